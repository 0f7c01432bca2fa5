// What goes out of a list, to a file or the clipboard: at once when it is short, else in portions beside what else
// there is to do.
#pragma once

#include "base/LongRun.h"
#include "host/korvexcontrols/model/Export.h"
#include "host/korvexcontrols/model/ListModel.h"

#include <optional>

namespace korvex {

class ListOutput final : public base::LongRun {
public:
    // Gets the whole text, and nothing of one that was stopped.
    using Ready = std::function<void(const std::string& text)>;

    ListOutput(const ListModel& model, CellSource& source) : m_model(model), m_source(source) {}

    // `name` is for the user: "Copying".
    void Start(const char* name, RowsText text, Ready ready);
    // Before the rows go: what is left, at once.
    void Finish();

    bool IsUnderWay() const override { return m_text.has_value(); }
    void Continue() override;
    void Stop() override { m_text.reset(); }
    void EndUnseen() override { Finish(); }
    std::string Progress() const override;
    std::size_t Done() const override { return m_text ? m_text->Done() : 0; }
    std::size_t Total() const override { return m_text ? m_text->Total() : 0; }

private:
    void RunFor(std::int64_t milliseconds);
    // The next rows, or the text when all are in it.
    void Step();

    const ListModel& m_model;
    CellSource& m_source;
    const char* m_name = "";
    std::optional<RowsText> m_text; // while it is under way
    Ready m_ready;
};

} // namespace korvex

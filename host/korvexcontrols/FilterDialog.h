// Asks for the filter of one column.
#pragma once

#include "framework/ColorStatic.h"
#include "host/korvexcontrols/QVDialog.h"
#include "host/korvexcontrols/model/ColumnFilter.h"

#include <functional>

namespace korvex {

class FilterDialog final : public CQVDialog {
public:
    // The filter that was chosen; null when there is to be none.
    using Chosen = std::function<void(const FilterInput*)>;

    FilterDialog(std::weak_ptr<void> owner);

    // Not modal: it goes with the list's window.
    void Ask(HWND list, const std::string& heading, ValueType type, const FilterInput* now, Chosen chosen);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;
    void ShowSecond() const;
    FilterInput Read() const;
    void Accept();
    void Finish(const FilterInput* input);

    std::string m_heading;
    ValueType m_type = ValueType::text;
    std::optional<FilterInput> m_now;
    Chosen m_chosen;
    framework::ColorStatic m_fault;
};

} // namespace korvex

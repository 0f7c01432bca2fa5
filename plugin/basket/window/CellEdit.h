// The edit over a cell of a list. It stands in front of the list, which knows nothing of it: any list of the
// system has such cells.
#pragma once

#include "framework/Balloon.h"
#include "framework/Subclass.h"
#include "plugin/messaging/Session.h"

#include <functional>
#include <optional>
#include <string>

namespace planfold {

class CellEdit final : public framework::Subclass {
public:
    // Why the text is refused, if so; the edit stays then.
    using Take = std::function<std::optional<std::string>(const std::string&)>;
    // After a text was taken: to the next cell forward or back, or 0.
    using Go = std::function<void(int)>;

    explicit CellEdit(const Session& session) : m_session(session) {}
    ~CellEdit() override { Close(); }

    // Over the cell, which is brought into view, with all of the text selected.
    void Open(HWND dialog, HWND list, int row, int column, const std::string& text, Take take, Go go);
    void Close();

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnGone() override {
        m_balloon.Forget();
        m_label = nullptr;
    }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Accept(int step);

    const Session& m_session;
    HWND m_list = nullptr;
    HWND m_label = nullptr;
    Take m_take;
    Go m_go;
    framework::Balloon m_balloon;
    bool m_taking = false; // a box of what takes the text may have the focus meanwhile
};

} // namespace planfold

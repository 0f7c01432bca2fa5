// The tabbed log at the foot of the main frame.
#pragma once

#include "framework/Window.h"
#include "host/terminal/core/TabbedLog.h"
#include "host/terminal/window/ListColumns.h"

#include <optional>

namespace vesk {

class LogView {
public:
    explicit LogView(const TabbedLog& log) : m_log(log) {}

    bool Create(HWND parent, int tabsId, int listId);
    void Place(const RECT& rect, const TextScale& scale);
    void SetFont(HFONT font);
    void Show(bool shown);
    // After lines were added: shows the newest.
    void Refresh();
    std::optional<LRESULT> OnNotify(const NMHDR& header);

private:
    LogTab Shown() const;

    const TabbedLog& m_log;
    HWND m_tabs = nullptr;
    HWND m_list = nullptr;
};

} // namespace vesk

// Gives the keyboard back after a box: its end activates the window below, but not the control that was at
// work.
#pragma once

#include <windows.h>

namespace framework {

class FocusKeeper {
public:
    FocusKeeper() = default;
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;
    // Not when another window was brought up meanwhile.
    ~FocusKeeper() {
        if (m_focus && GetFocus() != m_focus && GetActiveWindow() == GetAncestor(m_focus, GA_ROOT))
            SetFocus(m_focus);
    }

private:
    HWND m_focus = GetFocus();
};

} // namespace framework

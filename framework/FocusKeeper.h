// Where the keyboard is when one window comes before another.
#pragma once

#include <windows.h>

namespace framework {

// Gives the keyboard back after a window that came before another: its end activates the other, but not always
// the control that was at work.
class FocusKeeper {
public:
    FocusKeeper() = default;
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;
    // Leaves the focus alone when another window was brought up meanwhile.
    ~FocusKeeper() {
        if (m_focus && GetFocus() != m_focus && GetActiveWindow() == GetAncestor(m_focus, GA_ROOT))
            SetFocus(m_focus);
    }

private:
    HWND m_focus = GetFocus();
};

} // namespace framework

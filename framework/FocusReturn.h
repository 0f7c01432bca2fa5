// Gives the keyboard back after a box: its end activates the window below, but not the control that was at
// work.
#pragma once

#include <windows.h>

namespace framework {

class FocusReturn {
public:
    FocusReturn() = default;
    FocusReturn(const FocusReturn&) = delete;
    FocusReturn& operator=(const FocusReturn&) = delete;
    // Not when another window was brought up meanwhile.
    ~FocusReturn() {
        if (m_focus && GetFocus() != m_focus && GetActiveWindow() == GetAncestor(m_focus, GA_ROOT))
            SetFocus(m_focus);
    }

private:
    HWND m_focus = GetFocus();
};

} // namespace framework

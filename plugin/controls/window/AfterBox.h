// A window's questions that had to wait for a box of another window.
#pragma once

#include "framework/MessageBoxes.h"

namespace planfold {

class AfterBox {
public:
    explicit AfterBox(const framework::MessageBoxes& boxes) : m_boxes(boxes) {}

    // False while a box is open: that comes to the front, and `window` gets a timer's message once it is gone.
    bool MayAsk(HWND window) const {
        if (!m_boxes.BringToFront()) return true;
        SetTimer(window, kTimer, kTimerMs, nullptr);
        return false;
    }
    bool IsGone(WPARAM timer) const { return timer == kTimer && !m_boxes.IsBusy(); }
    static void Done(HWND window) { KillTimer(window, kTimer); }

private:
    static constexpr UINT_PTR kTimer = 1;
    static constexpr UINT kTimerMs = 50;

    const framework::MessageBoxes& m_boxes;
};

} // namespace planfold

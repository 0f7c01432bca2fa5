// A stream of changes is shown ten times a second: what is painted would cost more than what changes. The first
// one after a pause is shown as soon as nothing else waits.
#pragma once

#include <windows.h>

namespace framework {

class Pace {
public:
    // With one or the other of its own, the window is told that it is time.
    Pace(UINT message, UINT_PTR timer) : m_message(message), m_timer(timer) {}

    // Asks for the time to come, once until then.
    void Ask(HWND window) {
        if (m_isAsked) return;
        const ULONGLONG since = GetTickCount64() - m_shownAt;
        m_isAsked =
            (since < kPauseMs && SetTimer(window, m_timer, static_cast<UINT>(kPauseMs - since), nullptr) != 0)
            || PostMessageA(window, m_message, 0, 0) != 0;
    }
    bool IsTime(UINT message, WPARAM wParam) const {
        return message == m_message || (message == WM_TIMER && wParam == m_timer);
    }
    // The window shows everything.
    void NoteShown(HWND window) {
        KillTimer(window, m_timer);
        m_isAsked = false;
        m_shownAt = GetTickCount64();
    }
    // Of the window that was asked for, nothing comes any more.
    void NoteGone() { m_isAsked = false; }

private:
    static constexpr ULONGLONG kPauseMs = 100;

    const UINT m_message;
    const UINT_PTR m_timer;
    bool m_isAsked = false;
    ULONGLONG m_shownAt = 0;
};

} // namespace framework

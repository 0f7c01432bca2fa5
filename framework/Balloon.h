// A balloon that points at a control, for a word to the user that must not stop the typing.
#pragma once

#include "framework/Window.h"

namespace framework {

class Balloon {
public:
    Balloon() = default;
    Balloon(const Balloon&) = delete;
    Balloon& operator=(const Balloon&) = delete;
    ~Balloon();

    // It points at the middle of the control from below; an earlier one is replaced. `icon` is one of TTI_*.
    void Show(HWND control, const std::wstring& title, const std::wstring& text, int icon);
    void Hide();
    // The control is gone, and the balloon with it.
    void Forget() {
        m_tip = m_control = nullptr;
        m_shown = false;
    }

private:
    TTTOOLINFOW Tool() const;

    HWND m_tip = nullptr; // owned by the control, which may take it away
    HWND m_control = nullptr;
    std::wstring m_text;
    bool m_shown = false;
};

} // namespace framework

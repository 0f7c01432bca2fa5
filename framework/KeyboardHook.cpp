#include "framework/KeyboardHook.h"

#include "framework/Guard.h"

namespace framework {

namespace {

constexpr char kMark[] = "framework.dialog";

// The enrolled dialog that the window is, or lies in; it may itself be docked inside a foreign frame.
HWND EnrolledDialog(HWND window) {
    for (; window; window = GetAncestor(window, GA_PARENT))
        if (GetPropA(window, kMark)) return window;
    return nullptr;
}

// Keys of an open menu, or of moving and sizing by keyboard, are for that.
bool InSystemLoop() {
    constexpr DWORD loops = GUI_INMENUMODE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE | GUI_INMOVESIZE;
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & loops) != 0;
}

// A click that takes the focus to a button, or from one, goes past the dialog manager, which then marks another
// button than the one that Enter presses.
void FollowClick(const MSG& message) {
    HWND control = message.hwnd;
    const HWND dialog = EnrolledDialog(control);
    while (control && GetAncestor(control, GA_PARENT) != dialog)
        control = GetAncestor(control, GA_PARENT);
    const HWND focused = GetFocus();
    if (!dialog || !control || control == dialog || control == focused) return;
    const auto kindOf = [](HWND window) { return window ? SendMessageA(window, WM_GETDLGCODE, 0, 0) : 0; };
    constexpr LRESULT button = DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON;
    const LRESULT clicked = kindOf(control);
    if ((clicked & DLGC_STATIC) || !((clicked | kindOf(focused)) & button)) return;
    SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

// Before the control that has the focus gets it.
bool TakesKey(HWND dialog, const MSG& message) {
    return message.message == WM_KEYDOWN
           && SendMessageA(dialog, kOfferedKey, message.wParam, message.lParam) != 0;
}

LRESULT CALLBACK OfferKey(int code, WPARAM removed, LPARAM lParam) noexcept {
    Guard([&] {
        auto& message = *reinterpret_cast<MSG*>(lParam);
        if (code < 0 || removed != PM_REMOVE) return;
        if (message.message == WM_LBUTTONDOWN) return FollowClick(message);
        if (message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return;
        const HWND dialog = EnrolledDialog(message.hwnd);
        if (!dialog || InSystemLoop()) return;
        if (!TakesKey(dialog, message) && !IsDialogMessageW(dialog, &message)) return;
        // Already dispatched: what the host's loop gets must do nothing.
        message.message = WM_NULL;
        message.wParam = 0;
        message.lParam = 0;
    });
    return CallNextHookEx(nullptr, code, removed, lParam);
}

} // namespace

// The wide hook: a narrow one would cut characters that the code page lacks a place for.
KeyboardHook::KeyboardHook()
    : m_hook(SetWindowsHookExW(WH_GETMESSAGE, OfferKey, nullptr, GetCurrentThreadId())) {}

void KeyboardHook::Enroll(HWND dialog) {
    SetPropA(dialog, kMark, dialog);
}

void KeyboardHook::Withdraw(HWND dialog) {
    RemovePropA(dialog, kMark);
}

} // namespace framework

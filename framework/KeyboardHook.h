// Keyboard handling of modeless dialogs inside a program whose message loop knows nothing of them: a hook
// of the thread offers each key to the dialog that it is meant for (Tab, Enter, Escape, accelerators).
#pragma once

#include "framework/Handle.h"

namespace framework {

// To an enrolled dialog before anything else gets the key: WM_KEYDOWN's arguments. Not 0 when the dialog took
// it.
inline constexpr UINT kOfferedKey = WM_APP + 0x1000;
// Whether the key was held down, in whatever window, before this press; `keyData` is WM_KEYDOWN's.
constexpr bool IsRepeated(LPARAM keyData) {
    return (keyData & (1 << 30)) != 0;
}

class KeyboardHook {
public:
    // The hook is the calling thread's, until this object ends.
    KeyboardHook();

    // Dialogs that want keys. The mark lies on the window itself.
    static void Enroll(HWND dialog);
    static void Withdraw(HWND dialog);

private:
    Hook m_hook;
};

} // namespace framework

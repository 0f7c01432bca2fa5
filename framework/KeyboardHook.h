// Keyboard handling of modeless dialogs inside a program whose message loop knows nothing of them: a hook
// of the thread offers each key to the dialog that it is meant for (Tab, Enter, Escape, accelerators).
#pragma once

#include "framework/Handle.h"

namespace framework {

class KeyboardHook {
public:
    // For the calling thread, until this object ends.
    KeyboardHook();

    // Dialogs that want keys. The mark lies on the window itself.
    static void Enroll(HWND dialog);
    static void Withdraw(HWND dialog);

private:
    Hook m_hook;
};

} // namespace framework

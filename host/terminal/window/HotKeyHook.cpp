#include "host/terminal/window/HotKeyHook.h"

#include "framework/Guard.h"
#include "host/terminal/docking/window/DockParts.h"
#include "host/terminal/script/window/Screen.h"

#include <string_view>

namespace vesk {
namespace {

// A hook procedure has no place for an object.
HotKeyTable* g_table = nullptr;

bool IsEdit(HWND window) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof name);
    return std::string_view(name) == "Edit";
}

void Offer(const MSG& message) {
    const auto down = [](int key) { return GetKeyState(key) < 0; };
    const KeyStroke stroke{static_cast<int>(message.wParam), down(VK_CONTROL), down(VK_MENU), down(VK_SHIFT)};
    if (IsEdit(message.hwnd) && IsEditingKey(stroke)) return;
    g_table->Forget([](HWND window) { return IsWindow(window) != 0; });
    HWND window = GetAncestor(message.hwnd, GA_ROOT);
    // A pane that floats is still the main frame's.
    if (IsOfClass(window, FloatWindow::kClass)) window = GetWindow(window, GW_OWNER);
    if (const HotKey* key = g_table->Find(window, stroke))
        PostMessageA(window, kHotKeyMessageBase + static_cast<UINT>(key->command),
                     static_cast<WPARAM>(key->command), 0);
}

} // namespace

HotKeyHook::HotKeyHook(HotKeyTable& table) {
    g_table = &table;
    m_hook.Reset(SetWindowsHookExA(WH_GETMESSAGE, Procedure, nullptr, GetCurrentThreadId()));
}

HotKeyHook::~HotKeyHook() {
    g_table = nullptr;
}

LRESULT CALLBACK HotKeyHook::Procedure(int code, WPARAM removed, LPARAM parameter) noexcept {
    if (code == HC_ACTION && removed == PM_REMOVE && g_table)
        framework::Guard([&] {
            const MSG& message = *reinterpret_cast<const MSG*>(parameter);
            if (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) Offer(message);
        });
    return CallNextHookEx(nullptr, code, removed, parameter);
}

} // namespace vesk

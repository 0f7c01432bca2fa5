#include "Boxes.h"

#include "Support.h"

namespace boxes {
namespace {

constexpr int kBoxText = 0xFFFF;

constinit void* g_hook = nullptr;
constinit HWND g_answered = nullptr;
constinit int g_count = 0;
constinit char g_text[512] = {};

bool IsBox(HWND window) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof name);
    return Same(name, "#32770") && GetDlgItem(window, kBoxText)
           && !FindWindowExA(window, nullptr, "Edit", nullptr)
           && !FindWindowExA(window, nullptr, "ComboBox", nullptr);
}

intptr_t OnCbt(int code, uintptr_t wParam, intptr_t lParam) {
    auto* window = reinterpret_cast<HWND>(wParam);
    if (code == kHcbtActivate && window != g_answered && IsBox(window)) {
        g_answered = window;
        ++g_count;
        GetWindowTextA(GetDlgItem(window, kBoxText), g_text, sizeof g_text);
        PostMessageA(window, kWmCommand, kOk, 0);
    }
    if (code == kHcbtDestroyWindow && window == g_answered) g_answered = nullptr;
    return CallNextHookEx(g_hook, code, wParam, lParam);
}

} // namespace

void Install() {
    g_hook = SetWindowsHookExA(kWhCbt, OnCbt, nullptr, GetCurrentThreadId());
}

void Remove() {
    UnhookWindowsHookEx(g_hook);
}

int Count() {
    return g_count;
}

const char* LastText() {
    return g_text;
}

} // namespace boxes

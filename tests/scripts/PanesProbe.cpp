// A plug-in that has nothing but two panes, and a hand on the mouse: with it the scripts try the frame's
// docking.
#include "sdk/HeapStringManager.h"
#include "sdk/PluginExports.h"

#include <windows.h>

#include <array>

namespace {

constexpr UINT kRegisterPane = 1933;
constexpr UINT kPaneCommand = 1214;
constexpr const char* kClass = "PanesProbe";
constexpr int kToldText = 1202;
constexpr std::array<const char*, 2> kCaptions = {"Probe Book", "Probe Notes"};
constexpr int kFirstId = 104;

HWND g_panes[2];
HeapStringManager g_strings;

HWND Frame() {
    return FindWindowA("VeskTraderFrame", nullptr);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND told = GetDlgItem(window, kToldText);
    switch (message) {
    case WM_SIZE:
        MoveWindow(told, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
    case WM_CLOSE:
        ShowWindow(window, SW_HIDE);
        return 0;
    case kPaneCommand:
        SetWindowTextA(told, reinterpret_cast<const char*>(lParam));
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

void OpenPane(int index) {
    HWND& pane = g_panes[index];
    if (IsWindow(pane)) {
        ShowWindow(pane, SW_SHOW);
        return;
    }
    pane = CreateWindowExA(WS_EX_CONTROLPARENT, kClass, kCaptions[static_cast<std::size_t>(index)],
                           WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0, Frame(),
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(kFirstId + index)), nullptr, nullptr);
    CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, pane,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(kToldText)), nullptr, nullptr);
    SendMessageA(Frame(), kRegisterPane, reinterpret_cast<WPARAM>(pane), 0);
}

void Mouse(UINT message, POINT screen) {
    SetCursorPos(screen.x, screen.y);
    ScreenToClient(Frame(), &screen);
    SendMessageA(Frame(), message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, MAKELPARAM(screen.x, screen.y));
}

// From the caption of the docked book to a point in thousandths of the frame; `drop` false stops on the way.
void DragBook(int x, int y, bool drop) {
    RECT pane{}, frame{};
    GetWindowRect(g_panes[0], &pane);
    GetWindowRect(Frame(), &frame);
    const POINT from{pane.left + 60, pane.top - 10};
    const POINT to{frame.left + (frame.right - frame.left) * x / 1000,
                   frame.top + (frame.bottom - frame.top) * y / 1000};
    Mouse(WM_LBUTTONDOWN, from);
    Mouse(WM_MOUSEMOVE, {(from.x + to.x) / 2, (from.y + to.y) / 2});
    Mouse(WM_MOUSEMOVE, to);
    if (drop) Mouse(WM_LBUTTONUP, to);
}

// A button pressed and let go, or a double click, on the book's caption; `x` from its left, or from its right
// when negative.
void ClickBook(int x, UINT message) {
    RECT pane{};
    GetWindowRect(g_panes[0], &pane);
    x = MulDiv(x, static_cast<int>(GetDpiForWindow(Frame())), USER_DEFAULT_SCREEN_DPI);
    const POINT point{x < 0 ? pane.right + x : pane.left + x, pane.top - 10};
    Mouse(WM_MOUSEMOVE, point);
    Mouse(message, point);
    Mouse(WM_LBUTTONUP, point);
}

constexpr struct {
    const char* entry;
    void (*run)();
} kEntries[] = {
    {"Book", [] { OpenPane(0); }},
    {"Notes", [] { OpenPane(1); }},
    {"End Book", [] { DestroyWindow(g_panes[0]); }},
    {"Drag Book to the Left", [] { DragBook(12, 450, true); }},
    {"Drag Book to the Middle", [] { DragBook(500, 350, true); }},
    {"Click Book's Close Button", [] { ClickBook(-10, WM_LBUTTONDOWN); }},
    {"Click Book's Float Button", [] { ClickBook(-34, WM_LBUTTONDOWN); }},
    {"Double-click Book's Caption", [] { ClickBook(60, WM_LBUTTONDBLCLK); }},
    {"Hold Book over the Right", [] { DragBook(985, 450, false); }},
};

} // namespace

extern "C" {

__declspec(dllexport) int GetVeskPluginInfo(CString* name, CString* version, CStringArray* menu, std::uint32_t*,
                                            std::uint32_t*) {
    *name = "Panes";
    *version = "1";
    for (const auto& entry : kEntries)
        menu->Append(entry.entry, g_strings);
    return 1;
}

__declspec(dllexport) void InitVeskPlugin(void*, const char*, std::int32_t, CString* menuEntry) {
    const TakenString picked(menuEntry);
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kClass;
    RegisterClassA(&windowClass);
    for (const auto& entry : kEntries)
        if (picked.View() == entry.entry) entry.run();
}

__declspec(dllexport) std::intptr_t ExitVeskPlugin() {
    for (const HWND pane : g_panes)
        if (IsWindow(pane)) DestroyWindow(pane);
    UnregisterClassA(kClass, nullptr);
    return 0;
}
}

// A plug-in that has nothing but two panes, made as a book of orders would be, and a hand on the mouse: with it
// the scripts try the frame's docking.
#include "sdk/HeapStringManager.h"
#include "sdk/PluginExports.h"

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <string>

namespace {

constexpr UINT kRegisterPane = 1933;
constexpr UINT kPaneCommand = 1214;
constexpr const char* kClass = "PanesProbe";
constexpr int kTabs = 1200, kList = 1201, kToldText = 1202, kStatus = 1203;
constexpr std::array<const char*, 2> kCaptions = {"Probe Book", "Probe Notes"};
constexpr int kFirstId = 104;

HWND g_panes[2];
HeapStringManager g_strings;

HWND Frame() {
    return FindWindowA("VeskTraderFrame", nullptr);
}

HWND MakeChild(HWND parent, const char* className, const char* text, DWORD style, int id) {
    return CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
}

void FillList(HWND list) {
    const char* headings[] = {"Registration", "Client", "Amount"};
    for (int i = 0; i < 3; ++i) {
        LVCOLUMNA column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = 120;
        column.pszText = const_cast<char*>(headings[i]);
        SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
    }
    for (int row = 0; row < 6; ++row) {
        std::string text = "SIP" + std::to_string(row);
        LVITEMA item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = text.data();
        SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    }
}

// The controls lie on a window of their own, as those of a dialog bar do.
HWND MakeBody(HWND pane) {
    const HWND body = CreateWindowExA(WS_EX_CONTROLPARENT, kClass, "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN,
                                      0, 0, 0, 0, pane, nullptr, nullptr, nullptr);
    const HWND tabs = MakeChild(body, WC_TABCONTROLA, "", WS_CLIPSIBLINGS | WS_TABSTOP, kTabs);
    for (const char* text : {"Active", "Paused"}) {
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<char*>(text);
        SendMessageA(tabs, TCM_INSERTITEMA, 99, reinterpret_cast<LPARAM>(&item));
    }
    FillList(MakeChild(body, WC_LISTVIEWA, "", LVS_REPORT | WS_TABSTOP, kList));
    MakeChild(body, "STATIC", "", 0, kToldText);
    const HWND status = MakeChild(body, STATUSCLASSNAMEA, "", CCS_NOPARENTALIGN | CCS_NORESIZE, kStatus);
    const int edges[] = {120, -1};
    SendMessageA(status, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(edges));
    SendMessageA(status, SB_SETTEXTA, 0, reinterpret_cast<LPARAM>("6 rows"));
    SendMessageA(status, SB_SETTEXTA, 1, reinterpret_cast<LPARAM>("ready"));
    return body;
}

void Tell(HWND window, const char* text) {
    SetDlgItemTextA(window, kToldText, text);
}

void LayOut(HWND body, int width, int height) {
    const int bar = 22;
    MoveWindow(GetDlgItem(body, kTabs), 0, 0, width, bar, TRUE);
    MoveWindow(GetDlgItem(body, kList), 0, bar, width, height - 3 * bar, TRUE);
    MoveWindow(GetDlgItem(body, kToldText), 0, height - 2 * bar, width, bar, TRUE);
    MoveWindow(GetDlgItem(body, kStatus), 0, height - bar, width, bar, TRUE);
}

void OpenMenu(HWND body) {
    const HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 1, "&Modify");
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu, MF_STRING | MF_GRAYED, 2, "&Cancel");
    TrackPopupMenu(menu, 0, 100, 100, 0, body, nullptr);
    DestroyMenu(menu);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND body = GetWindow(window, GW_CHILD);
    const bool isBody = GetDlgItem(window, kList) != nullptr;
    switch (message) {
    case WM_SIZE:
        if (isBody)
            LayOut(window, LOWORD(lParam), HIWORD(lParam));
        else
            MoveWindow(body, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
    case WM_CLOSE:
        ShowWindow(window, SW_HIDE);
        return 0;
    case kPaneCommand:
        Tell(body, reinterpret_cast<const char*>(lParam));
        return 0;
    case WM_COMMAND:
        if (wParam == 1) Tell(window, "Modify picked");
        return 0;
    case WM_CONTEXTMENU:
        if (isBody) OpenMenu(window);
        return 0;
    case WM_NOTIFY: {
        const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
        if (header.code == LVN_COLUMNCLICK)
            Tell(window,
                 ("column " + std::to_string(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem)).c_str());
        if (header.code == TCN_SELCHANGE)
            Tell(window,
                 ("page " + std::to_string(SendMessageA(header.hwndFrom, TCM_GETCURSEL, 0, 0))).c_str());
        return 0;
    }
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
    MakeBody(pane);
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

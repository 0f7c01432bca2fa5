#include "tests/support/WindowProbe.h"

#include <commctrl.h>

#include <map>
#include <utility>

namespace probe {
namespace {

LRESULT Send(HWND dialog, int control, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendMessageA(GetDlgItem(dialog, control), message, wParam, lParam);
}

void Notify(HWND dialog, int control, WORD notification) {
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(control, notification),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, control)));
}

BOOL CALLBACK Collect(HWND window, LPARAM list) {
    const std::string name = ClassOf(window);
    if (name != "IME" && name != "MSCTFIME UI") reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

} // namespace

std::string ClassOf(HWND window) {
    char name[64] = "";
    GetClassNameA(window, name, sizeof name);
    return name;
}

std::string Text(HWND window) {
    std::string text(static_cast<std::size_t>(SendMessageA(window, WM_GETTEXTLENGTH, 0, 0)) + 1, '\0');
    text.resize(static_cast<std::size_t>(
        SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::string Text(HWND dialog, int control) {
    return Text(GetDlgItem(dialog, control));
}

std::vector<std::string> Items(HWND dialog, int combo) {
    std::vector<std::string> items;
    const auto count = Send(dialog, combo, CB_GETCOUNT);
    for (LRESULT i = 0; i < count; ++i) {
        const auto index = static_cast<WPARAM>(i);
        std::string item(static_cast<std::size_t>(Send(dialog, combo, CB_GETLBTEXTLEN, index)) + 1, '\0');
        item.resize(static_cast<std::size_t>(
            Send(dialog, combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(item.data()))));
        items.push_back(item);
    }
    return items;
}

bool IsShown(HWND dialog, int control) {
    HWND window = GetDlgItem(dialog, control);
    return window && (GetWindowLongPtrA(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

void SetEdit(HWND dialog, int edit, std::string_view text) {
    Send(dialog, edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(std::string(text).c_str()));
}

bool Select(HWND dialog, int combo, std::string_view entry) {
    const auto items = Items(dialog, combo);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] != entry) continue;
        Send(dialog, combo, CB_SETCURSEL, i);
        Notify(dialog, combo, CBN_SELCHANGE);
        return true;
    }
    return false;
}

void Press(HWND dialog, int button) {
    Notify(dialog, button, BN_CLICKED);
}

SYSTEMTIME Date(HWND dialog, int picker) {
    SYSTEMTIME date{};
    Send(dialog, picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&date));
    return date;
}

void SetDate(HWND dialog, int picker, SYSTEMTIME date) {
    Send(dialog, picker, DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&date));
    NMDATETIMECHANGE change{};
    change.nmhdr = {GetDlgItem(dialog, picker), static_cast<UINT_PTR>(picker), DTN_DATETIMECHANGE};
    change.st = date;
    SendMessageA(dialog, WM_NOTIFY, static_cast<WPARAM>(picker), reinterpret_cast<LPARAM>(&change));
}

std::string Cell(HWND list, int row, int column) {
    char text[256] = "";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

RECT PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

SIZE SizeOf(HWND window) {
    const RECT place = PlaceOf(window);
    return {place.right - place.left, place.bottom - place.top};
}

std::string OnClipboard() {
    if (!OpenClipboard(nullptr)) return {};
    const auto* text = static_cast<const char*>(GlobalLock(GetClipboardData(CF_TEXT)));
    const std::string copied = text ? text : "";
    CloseClipboard();
    return copied;
}

std::string Entries(HMENU menu) {
    std::string entries;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        char text[64] = "";
        MENUITEMINFOA item{};
        item.cbSize = sizeof item;
        item.fMask = MIIM_STRING | MIIM_ID | MIIM_STATE | MIIM_FTYPE;
        item.dwTypeData = text;
        item.cch = sizeof text;
        GetMenuItemInfoA(menu, static_cast<UINT>(i), TRUE, &item);
        std::string entry = item.fType & MFT_SEPARATOR ? "-" : text + (" " + std::to_string(item.wID));
        if (!(item.fType & MFT_SEPARATOR) && (item.fState & MFS_GRAYED)) entry = "(" + entry + ")";
        entries += (i ? "|" : "") + entry;
    }
    return entries;
}

void PostKey(WPARAM key) {
    HWND focus = GetFocus();
    PostMessageA(focus, WM_KEYDOWN, key, 1);
    constexpr LPARAM released = static_cast<LPARAM>(0xC0000001);
    PostMessageA(focus, WM_KEYUP, key, released);
}

void PressKey(WPARAM key) {
    PostKey(key);
    Pump();
}

void DoubleClick(HWND list, int row) {
    RECT place{LVIR_LABEL, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&place));
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(list, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON,
                     MAKELPARAM(place.left + 4, place.top + 4));
    Pump();
}

std::vector<HWND> TopWindows() {
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), Collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND FindDialog(std::string_view title) {
    for (HWND window : TopWindows())
        if (ClassOf(window) == "#32770" && Text(window) == title) return window;
    return nullptr;
}

std::vector<HWND> Children(HWND parent) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        children.push_back(child);
    return children;
}

namespace {

std::map<UINT_PTR, WhenShown*> g_waiting; // by timer

} // namespace

WhenShown::WhenShown(std::function<HWND()> find, std::function<void(HWND)> act)
    : m_find(std::move(find)), m_act(std::move(act)), m_timer(SetTimer(nullptr, 0, 1, OnTimer)) {
    g_waiting[m_timer] = this;
}

WhenShown::~WhenShown() {
    KillTimer(nullptr, m_timer);
    g_waiting.erase(m_timer);
}

void CALLBACK WhenShown::OnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
    const auto found = g_waiting.find(timer);
    if (found == g_waiting.end() || found->second->m_seen) return;
    if (const HWND window = found->second->m_find()) {
        found->second->m_seen = true;
        found->second->m_act(window);
    }
}

HWND OpenMenu() {
    for (HWND window : TopWindows())
        if (ClassOf(window) == "#32768" && IsWindowVisible(window)) return window;
    return nullptr;
}

HMENU MenuOf(HWND openMenu) {
    return reinterpret_cast<HMENU>(SendMessageA(openMenu, MN_GETHMENU, 0, 0));
}

void Pump() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

bool PumpUntil(const std::function<bool()>& holds) {
    constexpr ULONGLONG patience = 5000;
    constexpr DWORD slice = 20;
    const ULONGLONG deadline = GetTickCount64() + patience;
    for (;;) {
        Pump();
        if (holds()) return true;
        if (GetTickCount64() > deadline) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, slice, QS_ALLINPUT);
    }
}

} // namespace probe

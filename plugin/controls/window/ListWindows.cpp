#include "plugin/controls/window/ListWindows.h"

#include "framework/DialogLayout.h"
#include "framework/Handle.h"

#include <commctrl.h>

#include <windowsx.h>

#include <algorithm>

namespace planfold {

namespace {

void AppendSeparator(HMENU menu) {
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
}

void AppendEntries(HMENU menu, std::span<const MenuEntry> entries) {
    for (const MenuEntry& entry : entries)
        if (entry.text)
            AppendMenuA(menu, MF_STRING | (entry.greyed ? MF_GRAYED : 0u), static_cast<UINT_PTR>(entry.command),
                        entry.text);
        else
            AppendSeparator(menu);
}

} // namespace

POINT RowMenuPlace(HWND list, LPARAM position) {
    POINT at{GET_X_LPARAM(position), GET_Y_LPARAM(position)};
    if (at.x != -1 || at.y != -1) return at;
    const int focused =
        static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    RECT row{LVIR_LABEL, 0, 0, 0};
    if (focused < 0
        || !SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(focused), reinterpret_cast<LPARAM>(&row)))
        row = {};
    at = {row.left, row.bottom};
    ClientToScreen(list, &at);
    return at;
}

bool IsOnHeadings(HWND list, LPARAM position) {
    RECT headings{};
    GetWindowRect(ListView_GetHeader(list), &headings);
    return PtInRect(&headings, {GET_X_LPARAM(position), GET_Y_LPARAM(position)});
}

void ShowAllColumns(HWND window, HWND list) {
    WINDOWINFO frame{};
    frame.cbSize = sizeof frame;
    GetWindowInfo(list, &frame);
    int lacking = GetSystemMetricsForDpi(SM_CXVSCROLL, framework::Window(window).Dpi())
                  + 2 * static_cast<int>(frame.cxWindowBorders);
    for (int i = Header_GetItemCount(ListView_GetHeader(list)); i-- > 0;)
        lacking += ListView_GetColumnWidth(list, i);
    RECT place{};
    GetWindowRect(list, &place);
    lacking -= place.right - place.left;
    GetWindowRect(window, &place);
    const RECT screen = framework::WorkArea(window);
    const LONG width = std::min(place.right - place.left + lacking, screen.right - screen.left);
    if (width <= place.right - place.left) return;
    const LONG left = std::clamp((place.left + place.right - width) / 2, screen.left, screen.right - width);
    SetWindowPos(window, nullptr, left, place.top, width, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void ShowParts(CQVBrickBar& bar, std::span<const std::string> texts, LONG letter) {
    std::vector<std::int32_t> edges;
    for (const std::string& text : texts)
        edges.push_back((edges.empty() ? 0 : edges.back())
                        + static_cast<std::int32_t>(text.size() + 2) * letter);
    if (!edges.empty()) edges.back() = -1;
    bar.SetParts(edges.data(), static_cast<std::int32_t>(edges.size()));
    for (std::size_t part = 0; part < texts.size(); ++part)
        bar.SetText(static_cast<std::int32_t>(part), texts[part].c_str());
}

void RowMenu::Open(HWND parent, POINT at, CFilterListCtrl& list, std::span<const MenuEntry> entries,
                   std::span<const MenuEntry> several) {
    const framework::Menu menu(CreatePopupMenu());
    AppendEntries(menu.Get(), entries);
    if (!entries.empty()) AppendSeparator(menu.Get());
    AppendEntries(menu.Get(), several);
    if (!several.empty()) AppendSeparator(menu.Get());
    list.AppendMenuEntries(menu.Get());
    if (!entries.empty()) AppendSeparator(menu.Get());
    Track(parent, at, menu.Get());
}

void RowMenu::Open(HWND parent, POINT at, std::span<const MenuEntry> entries) {
    const framework::Menu menu(CreatePopupMenu());
    AppendEntries(menu.Get(), entries);
    Track(parent, at, menu.Get());
}

void RowMenu::Track(HWND parent, POINT at, HMENU menu) {
    m_open = true;
    TrackPopupMenu(menu, TPM_RIGHTBUTTON, at.x, at.y, 0, parent, nullptr);
    m_open = false;
}

void RowMenu::Close() const {
    if (m_open) EndMenu();
}

KorvexListExtras* ExtrasOf(CFilterListCtrl& list) {
    const HMODULE library = GetModuleHandleA("KorvexControls.dll");
    const FARPROC found = library ? GetProcAddress(library, kKorvexExtrasOf) : nullptr;
    return found ? reinterpret_cast<KorvexExtrasOfFunction*>(reinterpret_cast<void*>(found))(&list) : nullptr;
}

void StretchLastText(CFilterListCtrl& list) {
    if (KorvexListExtras* const extras = ExtrasOf(list)) extras->StretchLastText(1);
}

void KeepWindow(CFilterListCtrl& list) {
    if (KorvexListExtras* const extras = ExtrasOf(list)) extras->KeepWindow();
}

std::vector<RecordId> SelectedRecords(const CFilterListCtrl& list) {
    std::vector<RecordId> records(list.SelectedCount());
    records.resize(list.Selected(records.data(), static_cast<std::uint32_t>(records.size())));
    return records;
}

RecordId FirstSelectedRecord(const CFilterListCtrl& list) {
    RecordId first = kNoRecord;
    list.Selected(&first, 1);
    return first;
}

std::optional<LRESULT> ActivateOnEnter::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* pending = reinterpret_cast<const MSG*>(lParam);
    if (message != WM_GETDLGCODE || !pending || pending->message != WM_KEYDOWN || pending->wParam != VK_RETURN)
        return std::nullopt;
    return Default(message, wParam, lParam) | DLGC_WANTMESSAGE;
}

} // namespace planfold

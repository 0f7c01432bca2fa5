#include "plugin/controls/window/ClientResultsPopup.h"

#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

using framework::Scaled;

constexpr UINT kGiveFocusBack = WM_APP + 1;

struct Column : framework::ReportList::Column {
    const char* ClientResult::*text;
};
constexpr Column kColumns[] = {
    {{"Client ID", 100}, &ClientResult::clientId},
    {{"Client Name", 150}, &ClientResult::clientName},
};

constexpr int kPopupWidth = 500; // pixels at 96 DPI, as the rest
constexpr int kMostHeight = 500;
constexpr int kRowHeight = 20;
constexpr int kHeightBesideRows = 50;

// Under the box, or above it when there is no room below; always on the monitor of the box.
RECT PlaceUnder(HWND box, int count) {
    const UINT dpi = framework::Window(box).Dpi();
    const int rows = std::min(count, kMostHeight / kRowHeight);
    const int width = Scaled(kPopupWidth, dpi);
    const int height = Scaled(std::min(kMostHeight, rows * kRowHeight + kHeightBesideRows), dpi);
    RECT place{};
    GetWindowRect(box, &place);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromWindow(box, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& work = monitor.rcWork;
    const bool below = place.bottom + height <= work.bottom || place.top - height < work.top;
    const int left = std::max<int>(work.left, std::min<int>(place.left, work.right - width));
    const int top = below ? place.bottom : place.top - height;
    return {left, top, left + width, top + height};
}

} // namespace

void CResultsList::AddColumns() const {
    for (const Column& column : kColumns)
        AddColumn(column);
}

void CResultsList::SetSizes() const {
    SetLook(kRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kColumns)); ++i)
        SetColumnWidth(i, kColumns[i].width);
}

void CPopup::Make(HWND box) {
    const auto module = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(box, GWLP_HINSTANCE));
    Create({.module = module,
            .className = "Planfold.Popup",
            .style = WS_POPUP | WS_BORDER | WS_CLIPCHILDREN,
            .exStyle = WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE,
            .rect = {0, 0, 1, 1},
            .parent = GetParent(box)});
    m_list = CResultsList(CreateWindowExA(0, WC_LISTVIEWA, "",
                                          WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL
                                              | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                                          0, 0, 1, 1, Handle(), reinterpret_cast<HMENU>(IDC_CLIENT_RESULTS),
                                          module, nullptr));
    m_list.AddColumns();
}

void CPopup::ShowUnder(HWND box, int count, int selected) {
    if (!Handle()) Make(box);
    m_list.SetSizes();
    m_list.SetFont(reinterpret_cast<HFONT>(framework::Window(box).Send(WM_GETFONT)));
    m_list.SetCount(count);
    m_list.SelectRow(selected);
    const RECT place = PlaceUnder(box, count);
    SetWindowPos(Handle(), HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

std::optional<LRESULT> CPopup::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        m_list.Move({0, 0, LOWORD(lParam), HIWORD(lParam)});
        return 0;
    case WM_MOUSEACTIVATE:
        return MA_NOACTIVATE;
    case kGiveFocusBack:
        framework::Window(m_box).Focus();
        return 0;
    default:
        return std::nullopt;
    }
}

std::optional<LRESULT> CPopup::OnNotify(const NMHDR& notification) {
    switch (notification.code) {
    case LVN_GETDISPINFOA:
        FillCell(reinterpret_cast<NMLVDISPINFOA&>(const_cast<NMHDR&>(notification)).item);
        return 0;
    case LVN_ITEMCHANGED:
        m_search.OnSelected(m_list.SelectedRow());
        return 0;
    case NM_SETFOCUS:
        // A click selects; the typing goes on in the box.
        PostMessageA(Handle(), kGiveFocusBack, 0, 0);
        return 0;
    case NM_DBLCLK:
    case NM_RETURN:
        m_search.Pick(m_list.SelectedRow());
        return 0;
    default:
        return std::nullopt;
    }
}

void CPopup::FillCell(LVITEMA& item) const {
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if (!(item.mask & LVIF_TEXT) || !item.pszText || column >= std::size(kColumns)) return;
    if (item.iItem < 0 || item.iItem >= m_search.Results().Count()) return;
    const char* text = m_search.Results().Row(item.iItem).*kColumns[column].text;
    lstrcpynA(item.pszText, text, item.cchTextMax);
}

} // namespace planfold

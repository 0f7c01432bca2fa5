#include "plugin/controls/window/ClientResultsPopup.h"

#include "framework/DialogLayout.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr UINT kGiveFocusBack = WM_APP + 1;

struct Column : framework::ReportList::Column {
    const char* ClientResult::*text;
};
constexpr Column kResultColumns[] = {
    {{"Client ID", 100}, &ClientResult::clientId},
    {{"Client Name", 150}, &ClientResult::clientName},
};

constexpr int kPopupWidth = 500; // pixels at 96 DPI and 8 points, as the rest
constexpr int kMostHeight = 500;
constexpr int kResultRowHeight = 20;
constexpr int kHeightBesideRows = 50;

// Under the box, or above it when there is room only there; cut to the larger side when neither has enough.
RECT PlaceBeside(HWND box, SIZE wanted) {
    RECT place{};
    GetWindowRect(box, &place);
    const RECT work = framework::WorkArea(box);
    const LONG roomBelow = work.bottom - place.bottom, roomAbove = place.top - work.top;
    const LONG height = std::min({wanted.cy, std::max(roomBelow, roomAbove), work.bottom - work.top});
    const LONG width = std::min(wanted.cx, work.right - work.left);
    const LONG left = std::clamp(place.left, work.left, work.right - width);
    // Of a window that the user moved half off the screen the box may lie outside.
    const LONG beside = height <= roomBelow ? place.bottom : place.top - height;
    const LONG top = std::clamp(beside, work.top, work.bottom - height);
    return {left, top, left + width, top + height};
}

} // namespace

void CResultsList::AddColumns() const {
    for (const Column& column : kResultColumns)
        AddColumn(column);
}

void CResultsList::SetSizes() const {
    SetLook(kResultRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kResultColumns)); ++i)
        SetColumnWidth(i, kResultColumns[i].width);
}

void CPopup::Make(HWND box) {
    const auto module = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(box, GWLP_HINSTANCE));
    Create({.module = module,
            .className = "Planfold.Popup",
            .style = WS_POPUP | WS_BORDER | WS_CLIPCHILDREN,
            .exStyle = WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE,
            .rect = {0, 0, 1, 1},
            .parent = GetParent(box)});
    m_list = CResultsList(CreateWindowExA(0, WC_LISTVIEWA, "Clients",
                                          WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL
                                              | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                                          0, 0, 1, 1, Handle(), reinterpret_cast<HMENU>(IDC_CLIENT_RESULTS),
                                          module, nullptr));
    m_list.AddColumns();
}

void CPopup::ShowUnder(HWND box, int count, int selected) {
    if (!Handle()) Make(box);
    m_list.SetFont(reinterpret_cast<HFONT>(framework::Window(box).Send(WM_GETFONT)));
    m_list.SetSizes();
    m_list.SetCount(count);
    const framework::TextScale scale = m_list.Scale();
    const int rows = std::min(count, kMostHeight / kResultRowHeight);
    const int height = std::min(kMostHeight, rows * kResultRowHeight + kHeightBesideRows);
    const RECT place = PlaceBeside(box, {scale(kPopupWidth), scale(height)});
    SetWindowPos(Handle(), HWND_TOP, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE | SWP_SHOWWINDOW);
    // Into view in the size that it has now.
    m_list.SelectRow(selected);
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
    case NM_CUSTOMDRAW:
        return DrawRow(reinterpret_cast<NMLVCUSTOMDRAW&>(const_cast<NMHDR&>(notification)));
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

// The keyboard is the box's, and a list without it would draw its selection as one that does not count.
LRESULT CPopup::DrawRow(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    if (static_cast<int>(draw.nmcd.dwItemSpec) != m_list.SelectedRow()) return CDRF_DODEFAULT;
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
    draw.clrText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    draw.clrTextBk = GetSysColor(COLOR_HIGHLIGHT);
    return CDRF_DODEFAULT;
}

void CPopup::FillCell(LVITEMA& item) const {
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if (!(item.mask & LVIF_TEXT) || !item.pszText || column >= std::size(kResultColumns)) return;
    if (item.iItem < 0 || item.iItem >= m_search.Results().Count()) return;
    const char* text = m_search.Results().Row(item.iItem).*kResultColumns[column].text;
    lstrcpynA(item.pszText, text, item.cchTextMax);
}

} // namespace planfold

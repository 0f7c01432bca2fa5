#include "plugin/history/window/SIPOrderHistoryDlg.h"

#include "framework/Guard.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/history/window/ChartPainter.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr char kHistoryName[] = "SIPOrderHistory";
// The list's share of the room, of a hundred; least heights in pixels at 96 DPI.
constexpr int kListShare = 45;
constexpr int kLeastList = 60;
constexpr int kLeastBelow = 140;

} // namespace

CSIPOrderHistoryDlg::CSIPOrderHistoryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes)
    : CListDialog(module, IDD_ORDER_HISTORY, session,
                  {IDI_CALENDAR,
                   IDC_HISTORY_LIST,
                   {},
                   {},
                   {},
                   kHistoryName,
                   ListColumns<HistoryColumn>(kHistoryColumns),
                   FirstCommand(NumberedList::orderHistory),
                   true}),
      m_boxes(boxes), m_link(session.lookup, kRxRequests, this, this),
      m_history(session, *this, m_link.Control()) {}

void CSIPOrderHistoryDlg::ShutDown() {
    Destroy();
    m_link.Release();
}

void CSIPOrderHistoryDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_history.OnResponse(message);
    });
}

void CSIPOrderHistoryDlg::OnInit() {
    CListDialog::OnInit();
    m_splitter.Create(
        {Handle(), List().Handle(), IDC_HISTORY_SPLITTER, kHistoryName, kListShare, kLeastList, kLeastBelow});
    Arrange();
}

// As the template has them.
void CSIPOrderHistoryDlg::RememberPlaces() {
    m_places.clear();
    for (HWND child = GetWindow(Handle(), GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT& place = m_places[GetDlgCtrlID(child)];
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&place), 2);
    }
    m_places.erase(IDC_HISTORY_SPLITTER);
}

// The list, and below the bar the details and the chart, which takes what is left.
void CSIPOrderHistoryDlg::PlaceList(const RECT& area) {
    if (!m_splitter.Handle() || IsIconic(Handle())) return;
    // A control that moves onto another would take its picture along.
    const framework::RedrawHold hold(Handle());
    const RECT list = m_places[IDC_HISTORY_LIST];
    m_splitter.Place(area);
    const RECT above = m_splitter.First();
    for (auto [id, place] : m_places) {
        OffsetRect(&place, 0, above.bottom - list.bottom);
        if (id == IDC_HISTORY_REMARKS) place.right = area.right;
        if (id == IDC_HISTORY_CHART)
            place = {place.left, place.top, area.right, std::max(place.top, area.bottom)};
        Item(id).Move(id == IDC_HISTORY_LIST ? above : place);
    }
}

std::optional<LRESULT> CSIPOrderHistoryDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_DRAWITEM) return CListDialog::OnMessage(message, wParam, lParam);
    const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (draw.CtlID != IDC_HISTORY_CHART) return std::nullopt;
    if (m_chartIsOld) RefreshChart();
    const auto font = reinterpret_cast<HFONT>(Item(IDC_HISTORY_CHART).Send(WM_GETFONT));
    PaintBarChart(draw.hDC, draw.rcItem, font, Self().Dpi(), m_chart);
    return TRUE;
}

std::optional<LRESULT> CSIPOrderHistoryDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == kKorvexSplitterMoved) {
        Arrange();
        return 0;
    }
    const auto handled = CListDialog::OnNotify(notification);
    if (notification.code == LVN_ITEMCHANGED) FollowFocus();
    return handled;
}

void CSIPOrderHistoryDlg::FollowFocus() {
    if (HasWindow() && !m_listing) m_history.OnFocusChanged();
}

void CSIPOrderHistoryDlg::ListRecords() {
    if (!HasWindow() && !Create())
        return framework::ReportFault("the order history window cannot be made",
                                      std::source_location::current());
    const auto& records = m_history.Records();
    // Each row has the focus for a moment, which is nothing to be told.
    m_listing = true;
    ListRows(records.size());
    m_listing = false;
    RefreshChart();
    InvalidateRect(Item(IDC_HISTORY_CHART).Handle(), nullptr, FALSE);
}

// The chart is made anew when it is painted: once for a burst of trades.
void CSIPOrderHistoryDlg::OnRecordChanged() {
    m_chartIsOld = true;
    // Without a window it would be every window's.
    if (HasWindow()) InvalidateRect(Item(IDC_HISTORY_CHART).Handle(), nullptr, FALSE);
}

void CSIPOrderHistoryDlg::RefreshChart() {
    m_chartIsOld = false;
    m_chart = HistoryChart(m_history.Records());
    Item(IDC_HISTORY_CHART).SetText(m_chart.Summary());
}

std::optional<std::size_t> CSIPOrderHistoryDlg::FocusedRecord() const {
    const std::uint32_t focused = List().Focused();
    return HasWindow() && focused != UINT32_MAX ? std::optional<std::size_t>(focused) : std::nullopt;
}

void CSIPOrderHistoryDlg::ShowDetails(const HistoryDetails& details, const std::string& remarks) {
    // All is drawn again: what waited to be painted before, as a row that lost the focus, may be forgotten.
    const framework::RedrawHold hold(Handle());
    for (std::size_t i = 0; i < details.size(); ++i)
        Item(IDC_HISTORY_DETAIL + static_cast<int>(i)).SetText(details[i]);
    Item(IDC_HISTORY_REMARKS).SetText(remarks);
}

void CSIPOrderHistoryDlg::Show(bool shown) {
    if (!HasWindow()) return;
    if (!shown) return Self().Show(false);
    ShowWindow(Handle(), IsIconic(Handle()) ? SW_RESTORE : SW_SHOW);
    if (Self().BringToFront()) Item(IDC_HISTORY_LIST).Focus();
}

std::string_view CSIPOrderHistoryDlg::Cell(std::uint32_t record, std::int32_t column) const {
    const auto& records = m_history.Records();
    if (record >= records.size()) return {};
    return records[record][kHistoryColumns[column].field];
}

} // namespace planfold

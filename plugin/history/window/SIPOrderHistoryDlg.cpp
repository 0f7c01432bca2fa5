#include "plugin/history/window/SIPOrderHistoryDlg.h"

#include "framework/Guard.h"
#include "plugin/controls/window/ListWindows.h"
#include "plugin/history/window/ChartPainter.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr unsigned kListCommands = 26300; // of a hundred
// The list's share of the room, of a hundred; least heights in pixels at 96 DPI.
constexpr int kListShare = 45;
constexpr int kLeastList = 60;
constexpr int kLeastBelow = 140;

} // namespace

CSIPOrderHistoryDlg::CSIPOrderHistoryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes)
    : Dialog(module, IDD_ORDER_HISTORY), m_session(session), m_boxes(boxes),
      m_link(session.lookup, kRxRequests, this, this), m_history(session, *this, m_link.Control()) {}

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
    const auto columns = ListColumns<HistoryColumn>(kHistoryColumns);
    m_list.Attach({Item(IDC_HISTORY_LIST).Handle(), "SIPOrderHistory", this, columns.data(),
                   static_cast<std::int32_t>(columns.size()), kListCommands});
    StretchLastText(m_list);
    m_splitter.Create({Handle(), m_list.Handle(), IDC_HISTORY_SPLITTER, "SIPOrderHistory", kListShare,
                       kLeastList, kLeastBelow});
    Arrange();
    KeepWindow(m_list);
}

void CSIPOrderHistoryDlg::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        Dialog::LayOut(dpi);
        SetCaptionIcon(IDI_CALENDAR);
        RememberPlaces();
    });
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
void CSIPOrderHistoryDlg::Arrange() {
    if (!m_frame.HasRoom() || !m_splitter.Handle() || IsIconic(Handle())) return;
    // A control that moves onto another would take its picture along.
    const framework::RedrawHold hold(Handle());
    const RECT client = Self().ClientRect();
    const RECT list = m_places[IDC_HISTORY_LIST];
    const RECT area{list.left, list.top, client.right - list.left, client.bottom - list.top};
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
    switch (message) {
    case WM_SIZE:
        Arrange();
        return 0;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_SYSCOLORCHANGE:
        return Item(IDC_HISTORY_LIST).Send(message);
    case WM_DRAWITEM: {
        const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (draw.CtlID != IDC_HISTORY_CHART) return std::nullopt;
        if (m_chartIsOld) RefreshChart();
        const auto font = reinterpret_cast<HFONT>(Item(IDC_HISTORY_CHART).Send(WM_GETFONT));
        PaintBarChart(draw.hDC, draw.rcItem, font, Self().Dpi(), m_chart);
        return TRUE;
    }
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle()) return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, {});
        return 0;
    case WM_DESTROY:
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool CSIPOrderHistoryDlg::OnCommand(const framework::Command& command) {
    return m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
}

std::optional<LRESULT> CSIPOrderHistoryDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == kKorvexSplitterMoved) {
        Arrange();
        return 0;
    }
    LRESULT result = 0;
    const bool handled = m_list.HandleNotify(&notification, &result);
    if (notification.code == LVN_ITEMCHANGED) FollowFocus();
    return handled ? std::optional(result) : std::nullopt;
}

void CSIPOrderHistoryDlg::FollowFocus() noexcept {
    framework::Guard([&] {
        if (HasWindow() && !m_listing) m_history.OnFocusChanged();
    });
}

void CSIPOrderHistoryDlg::ListRecords() {
    if (!HasWindow() && !Create())
        return framework::ReportFault("the order history window cannot be made",
                                      std::source_location::current());
    const auto& records = m_history.Records();
    // Each row has the focus for a moment, which is nothing to be told.
    m_listing = true;
    m_list.BeginChanges();
    m_list.RemoveAll();
    for (auto record = static_cast<std::uint32_t>(records.size()); record-- > 0;)
        m_list.InsertFront(record, kKorvexAsked);
    m_list.EndChanges();
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
    const std::uint32_t focused = m_list.Focused();
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
    SetForegroundWindow(Handle());
    Item(IDC_HISTORY_LIST).Focus();
}

void CSIPOrderHistoryDlg::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                                    KorvexText* texts) noexcept {
    const HistoryField field = kHistoryColumns[column].field;
    const auto& all = m_history.Records();
    for (std::uint32_t i = 0; i < count; ++i) {
        texts[i] = {};
        if (records[i] >= all.size()) continue;
        const std::string& text = all[records[i]][field];
        texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
    }
}

} // namespace planfold

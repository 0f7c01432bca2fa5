#include "plugin/morning/window/UpcomingRunsDlg.h"

#include "plugin/controls/window/DialogWindow.h"
#include "plugin/history/window/ChartPainter.h"
#include "plugin/resources/resource.h"

namespace planfold {

namespace {

constexpr char kUpcomingName[] = "SIPUpcomingRuns";
// The list's share of the room, of a hundred; least heights in pixels at 96 DPI.
constexpr int kUpcomingShare = 65;
constexpr int kLeastUpcoming = 80;
constexpr int kLeastChart = 90;

constexpr UINT_PTR kGrowthTimer = 1;
constexpr UINT kGrowthMs = 1000;

enum UpcomingEntry { kOpenAllEntry = 25301, kCloseAllEntry, kUpcomingHistoryEntry };

} // namespace

CUpcomingRunsDlg::CUpcomingRunsDlg(HINSTANCE module, Session& session, const OrderCache& records,
                                   History history)
    : CPeriodWindow(
        module, IDD_UPCOMING_RUNS, session,
        {kUpcomingName, ListColumns<RunColumn>(kRunColumns), FirstCommand(NumberedList::upcomingRuns),
         kPeriodChoices, kFirstPeriodChoice}),
      m_runs(session, records, *this), m_progress(module, session, m_runs, CRunProgressDlg::Owner::disabled),
      m_history(std::move(history)) {}

void CUpcomingRunsDlg::OnInit() {
    CPeriodWindow::OnInit();
    m_splitter.Create({Handle(), Item(IDC_RUNS_LIST).Handle(), IDC_RUNS_SPLITTER, kUpcomingName, kUpcomingShare,
                       kLeastUpcoming, kLeastChart});
    SetTimer(Handle(), kGrowthTimer, kGrowthMs, nullptr);
    Arrange();
}

void CUpcomingRunsDlg::OnDestroyed() {
    m_progress.Destroy();
    m_runs.Forget();
    CPeriodWindow::OnDestroyed();
}

void CUpcomingRunsDlg::PlaceList(const RECT& area) {
    if (!m_splitter.Handle()) return;
    const framework::RedrawHold hold(Handle());
    m_splitter.Place(area);
    Item(IDC_RUNS_LIST).Move(m_splitter.First());
    Item(IDC_RUNS_CHART).Move(m_splitter.Second());
}

std::optional<LRESULT> CUpcomingRunsDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER && wParam == kGrowthTimer) {
        if (m_runs.IsOutdated()) Refresh();
        return 0;
    }
    if (message != WM_DRAWITEM) return CPeriodWindow::OnMessage(message, wParam, lParam);
    const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (draw.CtlID != IDC_RUNS_CHART) return std::nullopt;
    const auto font = reinterpret_cast<HFONT>(Item(IDC_RUNS_CHART).Send(WM_GETFONT));
    PaintBarChart(draw.hDC, draw.rcItem, font, Self().Dpi(), m_runs.Chart());
    return TRUE;
}

std::optional<LRESULT> CUpcomingRunsDlg::OnNotify(const NMHDR& notification) {
    if (notification.code != kKorvexSplitterMoved) return CPeriodWindow::OnNotify(notification);
    Arrange();
    return 0;
}

void CUpcomingRunsDlg::ShowPeriod(const RunPeriod& period) {
    ShowAsOf();
    m_runs.Show(period, DayOf(LocalNow()).value_or(Day()), MineOnly());
}

void CUpcomingRunsDlg::ShowRows() {
    if (!HasWindow()) return;
    ListRows(m_runs.Rows());
    ShowTexts(m_runs.Notice(), m_runs.Status());
    Item(IDC_RUNS_CHART).SetText(m_runs.Chart().Summary());
    InvalidateRect(Item(IDC_RUNS_CHART).Handle(), nullptr, FALSE);
}

std::string_view CUpcomingRunsDlg::Cell(std::uint32_t row, std::int32_t column) const {
    return m_runs.Text(row, kRunColumns[column].field);
}

KorvexRowLook CUpcomingRunsDlg::Look(std::uint32_t row) const {
    return m_runs.IsPlan(row) ? kKorvexMuted : kKorvexPlain;
}

std::vector<MenuEntry> CUpcomingRunsDlg::Entries() const {
    const std::uint32_t row = FocusedRow();
    const bool isPlan = row != UINT32_MAX && !m_runs.Registration(row).empty();
    const bool isEmpty = m_runs.Rows().empty();
    return {{"Expand All", kOpenAllEntry, isEmpty},
            {"Collapse All", kCloseAllEntry, isEmpty},
            {"Order History\tEnter", kUpcomingHistoryEntry, !isPlan}};
}

bool CUpcomingRunsDlg::OnEntry(int command) {
    if (command == kUpcomingHistoryEntry && FocusedRow() != UINT32_MAX) OpenHistory(FocusedRow());
    if (command == kOpenAllEntry || command == kCloseAllEntry) {
        m_runs.SetAllOpen(command == kOpenAllEntry);
        ListRows(m_runs.Rows());
    }
    return command >= kOpenAllEntry && command <= kUpcomingHistoryEntry;
}

void CUpcomingRunsDlg::Activate(std::uint32_t row) {
    if (m_runs.IsPlan(row)) return OpenHistory(row);
    SetOpen(row, !m_runs.IsOpen(row), row);
}

// As in the trees of the system: Left on a plan goes to its client.
bool CUpcomingRunsDlg::OnRowKey(int key, std::uint32_t row) {
    if (GetKeyState(VK_CONTROL) < 0) return false;
    switch (key) {
    case VK_RIGHT:
    case VK_ADD:
    case VK_OEM_PLUS:
        SetOpen(row, true, row);
        return true;
    case VK_LEFT:
        if (m_runs.IsPlan(row)) {
            List().SelectOnly(m_runs.ClientRow(row));
            return true;
        }
        [[fallthrough]];
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
        SetOpen(row, false, m_runs.ClientRow(row));
        return true;
    default:
        return false;
    }
}

void CUpcomingRunsDlg::SetOpen(std::uint32_t row, bool open, std::uint32_t focus) {
    if (!m_runs.SetOpen(row, open)) return;
    ListRows(m_runs.Rows());
    List().SelectOnly(focus);
}

void CUpcomingRunsDlg::OpenHistory(std::uint32_t row) {
    if (const std::string number(m_runs.Registration(row)); !number.empty())
        Lifetime::Last([&](Pass pass) { m_history(pass, number); });
}

} // namespace planfold

#include "plugin/morning/window/PeriodRunsDlg.h"

#include "framework/Guard.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

namespace {

constexpr char kPeriodName[] = "SIPRunsOfPeriod";
enum PeriodEntry { kPeriodHistoryEntry = 25311, kPeriodCopyEntry };

} // namespace

CPeriodRunsDlg::CPeriodRunsDlg(HINSTANCE module, Session& session, const OrderCache& records, Others others)
    : CPeriodWindow(
        module, IDD_RUNS_OF_PERIOD, session,
        {kPeriodName, ListColumns<PastColumn>(kPastColumns), FirstCommand(NumberedList::runsOfPeriod),
         kPastChoices, kFirstPastChoice}),
      m_runs(session, records, *this, [this] { return Control(); }),
      m_progress(module, session, m_runs, CRunProgressDlg::Owner::disabled), m_others(std::move(others)) {}

void CPeriodRunsDlg::ShutDown() {
    Destroy();
    if (m_link) m_link->Release();
}

void CPeriodRunsDlg::OnDestroyed() {
    m_progress.Destroy();
    m_runs.Forget();
    CPeriodWindow::OnDestroyed();
}

RxControl* CPeriodRunsDlg::Control() {
    CKeloRxNotifierBase* const notifier = this;
    if (!m_link) m_link.emplace(m_session.lookup, kRxRequests, notifier, nullptr);
    return m_link->Control();
}

void CPeriodRunsDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_runs.OnResponse(message);
    });
}

bool CPeriodRunsDlg::OnCommand(const framework::Command& command) {
    if (command.id != IDC_RUNS_FAILED) return CPeriodWindow::OnCommand(command);
    m_runs.ShowFailedOnly(Item(IDC_RUNS_FAILED).Send(BM_GETCHECK) == BST_CHECKED);
    return true;
}

void CPeriodRunsDlg::Refresh() {
    m_anew = true;
    CPeriodWindow::Refresh();
}

void CPeriodRunsDlg::ShowPeriod(const RunPeriod& period) {
    ShowAsOf();
    m_runs.Show(period, DayOf(LocalNow()).value_or(Day()), std::exchange(m_anew, false), MineOnly());
}

void CPeriodRunsDlg::ShowRows() {
    if (!HasWindow()) return;
    ListRows(m_runs.RowCount());
    ShowTexts(m_runs.Notice(), m_runs.Status());
}

std::string_view CPeriodRunsDlg::Cell(std::uint32_t row, std::int32_t column) const {
    return m_runs.Text(row, kPastColumns[column].field);
}

std::vector<MenuEntry> CPeriodRunsDlg::Entries() const {
    return {{"Order History\tEnter", kPeriodHistoryEntry, FocusedRow() == UINT32_MAX},
            {"Copy Failed Runs to Basket...\tCtrl+B", kPeriodCopyEntry, m_runs.Failed().empty()}};
}

bool CPeriodRunsDlg::OnEntry(int command) {
    if (command == kPeriodHistoryEntry && FocusedRow() != UINT32_MAX) Activate(FocusedRow());
    if (command == kPeriodCopyEntry) CopyFailed();
    return command == kPeriodHistoryEntry || command == kPeriodCopyEntry;
}

bool CPeriodRunsDlg::OnRowKey(int key, std::uint32_t) {
    if (key != 'B' || GetKeyState(VK_CONTROL) >= 0) return false;
    CopyFailed();
    return true;
}

// All of the period.
void CPeriodRunsDlg::CopyFailed() {
    std::vector<std::string> numbers;
    for (const FailedRun& run : m_runs.Failed())
        numbers.push_back(run.registration);
    if (!numbers.empty()) Lifetime::Last([&](Pass pass) { m_others.copy(pass, std::move(numbers)); });
}

void CPeriodRunsDlg::Activate(std::uint32_t row) {
    if (const std::string number(m_runs.Text(row, PastField::registration)); !number.empty())
        Lifetime::Last([&](Pass pass) { m_others.history(pass, number); });
}

} // namespace planfold

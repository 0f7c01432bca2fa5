#include "plugin/morning/UpcomingRuns.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/orderentry/PlannedDates.h"

#include <utility>

namespace planfold {

namespace {

std::string Whole(std::int64_t number) {
    return Format("%lld", static_cast<long long>(number));
}

// "3 runs", "1 run".
std::string Counted(std::int64_t count, const char* what) {
    return Whole(count) + " " + what + (count == 1 ? "" : "s");
}

// The cell of a need; nothing where there is none.
std::string NeedText(Need need, std::int64_t value) {
    if (value == 0) return {};
    return need == Need::pay || need == Need::receive ? InRupees(value) : Whole(value);
}

constexpr bool IsNeed(RunField field) {
    return field >= RunField::toPay && field <= RunField::toDeliver;
}
constexpr Need NeedOf(RunField field) {
    return static_cast<Need>(static_cast<int>(field) - static_cast<int>(RunField::toPay));
}
static_assert(NeedOf(RunField::toReceive) == Need::receive && NeedOf(RunField::toBuy) == Need::buy
              && NeedOf(RunField::toDeliver) == Need::deliver);

} // namespace

void UpcomingRuns::Show(const RunPeriod& period, Day today, bool mineOnly) {
    m_reckoning = std::make_unique<RunReckoning>(m_records, period, today, m_session.ClosedDays(),
                                                 mineOnly ? m_session.identity.loginId : std::string());
    RunFor(kFirstReckoningMs);
    if (IsUnderWay()) m_view.ShowRun();
}

bool UpcomingRuns::IsOutdated() {
    const std::size_t before = std::exchange(m_lastSize, m_records.Size());
    return !IsUnderWay() && m_records.Size() != m_reckoned && m_records.Size() == before;
}

void UpcomingRuns::Forget() {
    m_reckoning.reset();
    m_shown = {};
    m_chart = {};
    m_texts.clear();
}

void UpcomingRuns::Continue() {
    if (IsUnderWay()) RunFor(kPortionMs);
}

void UpcomingRuns::RunFor(std::int64_t milliseconds) {
    const std::int64_t end = m_view.Milliseconds() + milliseconds;
    while (m_reckoning->Step())
        if (m_view.Milliseconds() >= end) return;
    End(false);
}

void UpcomingRuns::Stop() {
    if (IsUnderWay()) End(true);
}

// The clients that were open stay so.
void UpcomingRuns::End(bool stopped) {
    const auto reckoning = std::exchange(m_reckoning, nullptr);
    std::unordered_set<std::string> open;
    for (const UpcomingRows::Client& client : m_shown.clients)
        if (client.isOpen) open.insert(client.account);
    m_reckoned = m_records.Size();
    m_shown = reckoning->Take();
    m_texts.clear();
    m_shown.isStopped |= stopped;
    for (UpcomingRows::Client& client : m_shown.clients)
        client.isOpen = open.contains(client.account);
    m_chart = DaysChart(m_shown.period.from, m_shown.days, m_session.ClosedDays());
    m_view.ShowRun();
    m_view.ShowRows();
}

std::string UpcomingRuns::Progress() const {
    return Format("Calculating the runs: %zu of %zu plans", m_reckoning->Done(), m_reckoning->Total());
}

std::size_t UpcomingRuns::Done() const {
    return m_reckoning->Done();
}

std::size_t UpcomingRuns::Total() const {
    return m_reckoning->Total();
}

std::vector<std::uint32_t> UpcomingRuns::Rows() const {
    std::vector<std::uint32_t> rows;
    const auto clients = static_cast<std::uint32_t>(m_shown.clients.size());
    for (std::uint32_t row = 0; row < clients; ++row) {
        const UpcomingRows::Client& client = m_shown.clients[row];
        rows.push_back(row);
        for (std::uint32_t plan = 0; client.isOpen && plan < client.planCount; ++plan)
            rows.push_back(clients + client.firstPlan + plan);
    }
    return rows;
}

const UpcomingRows::Plan* UpcomingRuns::PlanOf(std::uint32_t row) const {
    const std::size_t plan = row - m_shown.clients.size();
    return IsPlan(row) && plan < m_shown.plans.size() ? &m_shown.plans[plan] : nullptr;
}

std::uint32_t UpcomingRuns::ClientRow(std::uint32_t row) const {
    const UpcomingRows::Plan* plan = PlanOf(row);
    return plan ? plan->client : row;
}

bool UpcomingRuns::IsOpen(std::uint32_t row) const {
    return !IsPlan(row) && m_shown.clients[row].isOpen;
}

bool UpcomingRuns::SetOpen(std::uint32_t row, bool open) {
    const std::uint32_t client = ClientRow(row);
    if (IsPlan(client) || (open && client != row)) return false;
    return std::exchange(m_shown.clients[client].isOpen, open) != open;
}

void UpcomingRuns::SetAllOpen(bool open) {
    for (UpcomingRows::Client& client : m_shown.clients)
        client.isOpen = open;
}

// Once the book is filled anew its numbers stand for other records.
std::string_view UpcomingRuns::Recorded(std::uint32_t row, OrderField field) const {
    const UpcomingRows::Plan* plan = PlanOf(row);
    const bool isThere = plan && m_records.Filling() == m_shown.filling && plan->record < m_records.Size();
    return isThere ? m_records[plan->record].Text(field) : std::string_view();
}

std::string_view UpcomingRuns::Text(std::uint32_t row, RunField field) const {
    const UpcomingRows::Plan* plan = PlanOf(row);
    if (IsPlan(row) && !plan) return {};
    const UpcomingRows::Client& client = m_shown.clients[ClientRow(row)];
    if (field == RunField::account) return client.account;
    if (field == RunField::name) return client.name;
    if (!plan) return Kept(ClientText(client, field));
    if (field == RunField::plan) return Registration(row);
    if (field == RunField::tradingSymbol) return Recorded(row, OrderField::tradingSymbol);
    if (field == RunField::frequency) return Recorded(row, OrderField::frequency);
    return Kept(PlanText(*plan, field));
}

std::string UpcomingRuns::ClientText(const UpcomingRows::Client& client, RunField field) const {
    if (IsNeed(field)) return NeedText(NeedOf(field), client.sums[NeedOf(field)]);
    switch (field) {
    case RunField::plan:
        return (client.isOpen ? "- " : "+ ") + Counted(client.planCount, "plan");
    case RunField::runs:
        return Whole(client.sums.runs);
    case RunField::note:
        return client.sums.moved ? Whole(client.sums.moved) + " moved" : "";
    default:
        return {};
    }
}

std::string UpcomingRuns::PlanText(const UpcomingRows::Plan& plan, RunField field) const {
    if (IsNeed(field)) return NeedOf(field) == plan.need ? NeedText(plan.need, plan.value) : "";
    switch (field) {
    case RunField::due:
        return FormatPlannedDate(plan.first.due);
    case RunField::expected:
        return FormatPlannedDate(plan.first.expected);
    case RunField::runs:
        return Whole(plan.runs);
    case RunField::note: {
        std::string note;
        if (plan.moved)
            note = Format("%u moved: due %s, expected %s", plan.moved, DayAndMonth(plan.firstMoved.due).c_str(),
                          DayAndMonth(plan.firstMoved.expected).c_str());
        if (plan.ends)
            note += (note.empty() ? "Ends " : "; ends ") + std::string(plan.isEndCertain ? "" : "about ")
                    + DayAndMonth(plan.last);
        return note;
    }
    default:
        return {};
    }
}

std::string UpcomingRuns::Notice() const {
    if (IsUnderWay() || !m_shown.clients.empty()) return {};
    if (m_records.Size() == 0) return "The registration book holds no plans.";
    return "No plan runs from " + FormatPlannedDate(m_shown.period.from) + " to "
           + FormatPlannedDate(m_shown.period.to) + ".";
}

std::array<std::string, 3> UpcomingRuns::Status() const {
    std::array<std::string, 3> parts;
    const RunSums& total = m_shown.total;
    if (total.runs > 0) {
        parts[0] = Counted(static_cast<std::int64_t>(m_shown.clients.size()), "client") + ", "
                   + Counted(static_cast<std::int64_t>(m_shown.plans.size()), "plan") + ", "
                   + Counted(total.runs, "run");
        parts[1] = "To pay " + FormatRupees(total[Need::pay]) + " and for " + Counted(total[Need::buy], "share")
                   + "; to receive " + FormatRupees(total[Need::receive]) + "; to deliver "
                   + Counted(total[Need::deliver], "share");
    }
    const auto add = [&](const std::string& text) { parts[2] += (parts[2].empty() ? "" : "; ") + text; };
    if (m_shown.isStopped) add("stopped before the last plan");
    if (total.moved)
        add(Counted(total.moved, "run") + " due on closed days " + (total.moved == 1 ? "is" : "are")
            + " moved");
    if (m_shown.paused)
        add(Counted(static_cast<std::int64_t>(m_shown.paused), "paused plan")
            + (m_shown.paused == 1 ? " does not run" : " do not run"));
    if (m_shown.unreadable)
        add("the dates of " + Counted(static_cast<std::int64_t>(m_shown.unreadable), "plan")
            + " cannot be read");
    return parts;
}

} // namespace planfold

#include "plugin/morning/RunReckoning.h"

#include "plugin/orderbook/BookConditions.h"

#include <algorithm>
#include <numeric>

namespace planfold {

RunReckoning::RunReckoning(const OrderCache& records, RunPeriod period, Day today, ClosedDays closed,
                           std::string user)
    : m_records(records), m_today(today), m_closed(std::move(closed)), m_user(std::move(user)) {
    period.to = std::clamp(period.to, period.from, period.from + std::chrono::days(RunPeriod::kMostDays - 1));
    m_rows.period = period;
    m_rows.filling = records.Filling();
    m_rows.days.resize(period.Days());
}

bool RunReckoning::Step() {
    // The book was filled anew: what was taken is of records that are gone.
    if (m_records.Filling() != m_rows.filling) {
        m_rows.isStopped = true;
        return false;
    }
    const std::size_t end = std::min<std::size_t>(m_records.Size(), m_next + kRecordsAStep);
    while (m_next < end)
        TakeRecord(m_next++);
    return m_next < m_records.Size();
}

void RunReckoning::TakeRecord(RecordId id) {
    const sOrderinfo& record = m_records[id];
    if (!IsOf(record, m_user)) return;
    std::optional<PlanRuns> read;
    const PlanState state = ReadPlan(record, m_today, m_closed, read);
    if (state == PlanState::paused) ++m_rows.paused;
    if (state == PlanState::unreadable) ++m_rows.unreadable;
    if (!read || read->first > m_rows.period.to) return;

    UpcomingRows::Plan plan;
    RunsToCome runs(read->schedule, read->place, read->left, read->first, m_closed);
    auto run = runs.Next();
    for (; run && run->expected <= m_rows.period.to; run = runs.Next()) {
        if (run->expected < m_rows.period.from) continue;
        const bool moved = m_closed.Has(run->due);
        if (plan.runs++ == 0) plan.first = *run;
        if (moved && plan.moved++ == 0) plan.firstMoved = *run;
        plan.last = run->expected;
        RunSums& day = m_rows.days[static_cast<std::size_t>((run->expected - m_rows.period.from).count())];
        ++day.runs;
        day.moved += moved;
        day.Add(read->need, read->value);
    }
    if (plan.runs == 0) return;
    plan.record = id;
    plan.need = read->need;
    plan.value = Times(read->value, plan.runs);
    plan.ends = !run;
    plan.isEndCertain = read->isEndCertain;
    plan.client = ClientOf(record);
    UpcomingRows::Client& client = m_rows.clients[plan.client];
    ++client.planCount;
    client.sums.runs += plan.runs;
    client.sums.moved += plan.moved;
    client.sums.Add(plan.need, plan.value);
    m_rows.plans.push_back(plan);
}

std::uint32_t RunReckoning::ClientOf(const sOrderinfo& record) {
    const auto [found, isNew] = m_clients.try_emplace(std::string(record.Text(OrderField::account)),
                                                      static_cast<std::uint32_t>(m_rows.clients.size()));
    if (isNew) m_rows.clients.push_back({found->first, std::string(record.Text(OrderField::accountName)), {}});
    return found->second;
}

// Clients by account, and the plans of each together, in the order of the book.
UpcomingRows RunReckoning::Take() {
    std::vector<std::uint32_t> order(m_rows.clients.size()), places(order.size());
    std::iota(order.begin(), order.end(), 0u);
    std::ranges::sort(order, {},
                      [&](std::uint32_t i) -> const std::string& { return m_rows.clients[i].account; });
    std::vector<UpcomingRows::Client> clients;
    std::uint32_t firstPlan = 0;
    for (const std::uint32_t i : order) {
        places[i] = static_cast<std::uint32_t>(clients.size());
        clients.push_back(std::move(m_rows.clients[i]));
        clients.back().firstPlan = firstPlan;
        firstPlan += clients.back().planCount;
        m_rows.total.Add(clients.back().sums);
    }
    std::vector<UpcomingRows::Plan> plans(m_rows.plans.size());
    std::vector<std::uint32_t> taken(clients.size());
    for (UpcomingRows::Plan& plan : m_rows.plans) {
        plan.client = places[plan.client];
        plans[clients[plan.client].firstPlan + taken[plan.client]++] = plan;
    }
    m_rows.clients = std::move(clients);
    m_rows.plans = std::move(plans);
    return std::move(m_rows);
}

} // namespace planfold

// What became of registrations: placing their exchange orders, and telling of them.

#include "host/server/Server.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <set>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;

} // namespace

std::string Server::Execute(const Registration& registration, const ExecutionPlan& plan) {
    if (!m_replayError.empty()) return m_replayError;
    NewOrders made;
    for (const Date day : plan.days) {
        const std::size_t sequence = m_orderCount + made.orders.size() + 1;
        made.Add(PlaceOnExchange({registration, plan, m_config.fills, day, sequence}));
    }
    return Keep(std::move(made));
}

std::string Server::Keep(NewOrders made) {
    if (std::string fault = Write(made.records); !fault.empty()) return fault;
    for (ExchangeOrder& order : made.orders)
        Enter(std::move(order));
    return {};
}

std::vector<Date> Server::OpenDays(const Registration& registration, std::size_t count) const {
    const auto start = ParseRecordDate(registration.Text(tag::startDate));
    if (!start) return {};
    Date last = Today();
    for (const tag::Tag tag : {tag::endDate, tag::cancelledDate})
        if (const auto date = ParseRecordDate(registration.Text(tag))) last = std::min(last, *date);
    std::set<Date> taken;
    if (const auto found = m_executions.find(std::string(registration.Number())); found != m_executions.end())
        for (const FieldRecord& order : found->second.orders)
            taken.insert(PlacementDay(order).value_or(last));

    constexpr std::chrono::year earliest(1970);
    const std::string_view frequency = registration.Text(tag::frequency);
    std::vector<Date> days;
    for (int i = InstalmentsBefore(*start, frequency, last); days.size() < count; --i) {
        const Date due = InstalmentDate(*start, frequency, i);
        if (due.year() < earliest) break;
        const Date day = m_market.FirstOpen(due);
        if (day <= last && taken.insert(day).second) days.push_back(day);
    }
    std::reverse(days.begin(), days.end());
    return days;
}

Reply Server::StartExecutionQuery(const ExecutionQuery& kind, void* request, const UserIdentity& user) {
    const Registration* registration = nullptr;
    if (const auto refusal = FindNamed(request, registration)) return Refuse(request, *refusal);
    if (!MaySee(user, *registration)) return Refuse(request, OtherUser());
    RowQuery query;
    query.request = kind.request;
    query.executions = &kind;
    query.number = registration->Number();
    if (const auto found = m_executions.find(query.number); found != m_executions.end())
        query.end = (found->second.*kind.rows).size();
    return {{}, std::move(query)};
}

std::string Server::NextExecution(RowQuery& query) {
    const ExecutionQuery& kind = *query.executions;
    query.isDone = query.next == query.end;
    m_writer.Start().Add(tag::echoedRequest, query.request);
    if (query.isDone)
        m_writer.Add(kind.closingTag, kind.closingText);
    else
        OrderAsOf(Today(), (m_executions.at(query.number).*kind.rows)[query.next++]).AddTo(m_writer);
    return m_writer.Finish();
}

void Server::Enter(ExchangeOrder order) {
    ++m_orderCount;
    Count(order);
    m_executions[std::string(order.order.Text(tag::registrationNumber))].Enter(std::move(order));
}

} // namespace vesk

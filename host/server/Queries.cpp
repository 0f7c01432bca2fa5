#include "host/server/Queries.h"

#include "host/server/OrderRules.h"

#include <algorithm>

namespace vesk {

namespace {

struct ListQuery {
    std::string_view request;
    std::optional<ServerRefusal> (*read)(void*, const UserIdentity&, RowQuery&);
};
constexpr ListQuery kLists[] = {{"om_get_sip_orders", ReadListQuery}, {"qry_eq_sip", ReadHistoryQuery}};

const ListQuery* FindList(std::string_view request) {
    const auto* found = std::ranges::find(kLists, request, &ListQuery::request);
    return found == std::end(kLists) ? nullptr : found;
}

} // namespace

std::optional<ServerRefusal> FindNamed(const Registrations& registrations, void* request,
                                       const Registration*& found) {
    const std::string_view number = qmx::Text(request, tag::registrationNumber);
    if (number.empty()) return MissingField("registration number");
    found = registrations.Find(number);
    if (found) return std::nullopt;
    return ServerRefusal{kCodeUnknownNumber,
                         "There is no registration " + std::string(number.substr(0, kLongestText))};
}

bool Queries::Has(std::string_view request) {
    return FindList(request) || FindExecutionQuery(request);
}

std::optional<ServerRefusal> Queries::Start(std::string_view name, void* request, const UserIdentity& user,
                                            RowQuery& query) const {
    query.request = name;
    if (const ListQuery* list = FindList(name)) {
        query.end = m_registrations.Size();
        return list->read(request, user, query);
    }
    return StartExecutions(*FindExecutionQuery(name), request, user, query);
}

std::optional<ServerRefusal> Queries::StartExecutions(const ExecutionQuery& kind, void* request,
                                                      const UserIdentity& user, RowQuery& query) const {
    const Registration* registration = nullptr;
    if (auto refusal = FindNamed(m_registrations, request, registration)) return refusal;
    if (!MaySee(user, *registration)) return OtherUser();
    query.executions = &kind;
    query.number = registration->Number();
    query.end = (m_registrations.HistoryOf(query.number).*kind.rows).size();
    return std::nullopt;
}

std::string Queries::NextRow(RowQuery& query) {
    return query.executions ? NextExecution(query) : NextRegistration(query);
}

std::string Queries::NextRegistration(RowQuery& query) {
    constexpr std::size_t mostLookedAt = 256;
    query.end = std::min(query.end, m_registrations.Size());
    const std::size_t stop = std::min(query.end, query.next + mostLookedAt);
    const Registration* found = nullptr;
    while (!found && query.next < stop) {
        const Registration& registration = m_registrations.At(query.next++);
        if (query.Wants(registration)) found = &registration;
    }
    query.isDone = query.next >= query.end;
    // The rows of a list are ended by what is no row.
    if (query.isList && found) query.isDone = false;
    if (!found && (!query.isDone || (query.hasRows && !query.isList))) return {};
    query.hasRows = true;
    m_writer.Start().Add(tag::echoedRequest, query.request);
    if (found && query.isList) m_writer.Add(tag::queriedRow, "1");
    if (found) found->AddTo(m_writer);
    return m_writer.Finish();
}

std::string Queries::NextExecution(RowQuery& query) {
    const ExecutionQuery& kind = *query.executions;
    const auto& rows = m_registrations.HistoryOf(query.number).*kind.rows;
    query.isDone = query.next >= std::min(query.end, rows.size());
    m_writer.Start().Add(tag::echoedRequest, query.request);
    if (query.isDone)
        m_writer.Add(kind.closingTag, kind.closingText);
    else
        OrderAsOf(m_clock.Today(), rows[query.next++]).AddTo(m_writer);
    return m_writer.Finish();
}

} // namespace vesk

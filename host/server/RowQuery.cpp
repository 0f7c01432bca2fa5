#include "host/server/RowQuery.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <array>

namespace vesk {
namespace {

// "3/7/2024": month, day, year.
std::optional<std::chrono::sys_days> ParseQueryDate(std::string_view text) {
    std::array<int, 3> numbers{};
    for (int& number : numbers) {
        const bool isLast = &number == &numbers.back();
        const std::size_t end = isLast ? text.size() : text.find('/');
        if (end == text.npos || end > 4) return std::nullopt;
        const auto read = WholeNumber(text.substr(0, end));
        if (!read) return std::nullopt;
        number = static_cast<int>(*read);
        text.remove_prefix(isLast ? end : end + 1);
    }
    const std::chrono::year_month_day date{std::chrono::year(numbers[2]),
                                           std::chrono::month(static_cast<unsigned>(numbers[0])),
                                           std::chrono::day(static_cast<unsigned>(numbers[1]))};
    return date.ok() ? std::optional(std::chrono::sys_days(date)) : std::nullopt;
}

std::optional<ServerRefusal> ReadDay(void* request, std::uint32_t tag, const char* name,
                                     std::chrono::sys_days& day) {
    const std::string_view text = qmx::Text(request, tag);
    if (text.empty()) return MissingField(name);
    const auto read = ParseQueryDate(text);
    if (!read) return WrongValue(name, text);
    day = *read;
    return std::nullopt;
}

struct Owner {
    std::uint32_t tag;
    const std::string& text;
};
// The firm, or the login where the connection has none.
Owner OwnerOf(const UserIdentity& user) {
    if (!user.peerIdA.empty()) return {tag::peerIdA, user.peerIdA};
    if (!user.peerIdB.empty()) return {tag::peerIdB, user.peerIdB};
    return {tag::loginId, user.loginId};
}

constexpr ExecutionQuery kExecutionQueries[] = {
    // An error that has no code ends the orders.
    {"qry_eq_sip_orders", &ExecutionHistory::orders, tag::errorCode, {}},
    {"qry_eq_sip_trades", &ExecutionHistory::trades, tag::noRowText, "no more data"},
};

} // namespace

const ExecutionQuery* FindExecutionQuery(std::string_view request) {
    const auto found = std::find_if(std::begin(kExecutionQueries), std::end(kExecutionQueries),
                                    [&](const ExecutionQuery& row) { return row.request == request; });
    return found == std::end(kExecutionQueries) ? nullptr : found;
}

bool MaySee(const UserIdentity& user, const Registration& registration) {
    const Owner owner = OwnerOf(user);
    return registration.Text(tag::loginId) == user.loginId || registration.Text(owner.tag) == owner.text;
}

bool RowQuery::Wants(const Registration& registration) const {
    if (registration.Text(ownerTag) != owner) return false;
    if (!entered) return true;
    const auto date = ParseRecordDate(registration.Text(tag::registrationDate));
    return date && std::chrono::sys_days(*date) >= entered->first
           && std::chrono::sys_days(*date) <= entered->last;
}

std::optional<ServerRefusal> ReadListQuery(void* request, const UserIdentity& user, RowQuery& query) {
    const std::string_view login = qmx::Text(request, tag::loginId);
    if (login.empty()) return MissingField("user");
    if (login != user.loginId) return WrongUser();
    query.ownerTag = tag::loginId;
    query.owner = user.loginId;
    query.isList = true;
    return std::nullopt;
}

std::optional<ServerRefusal> ReadHistoryQuery(void* request, const UserIdentity& user, RowQuery& query) {
    RowQuery::Days days;
    if (auto refusal = ReadDay(request, tag::startDate, "from-date", days.first)) return refusal;
    if (auto refusal = ReadDay(request, tag::toDate, "to-date", days.last)) return refusal;
    query.entered = days;
    const Owner owner = OwnerOf(user);
    query.ownerTag = owner.tag;
    query.owner = owner.text;
    return std::nullopt;
}

} // namespace vesk

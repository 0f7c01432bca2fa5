#include "plugin/morning/PlanRuns.h"

#include "plugin/base/Numbers.h"

#include <algorithm>
#include <limits>

namespace planfold {

namespace {

using std::chrono::days;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

std::int64_t Sum(std::int64_t one, std::int64_t other) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(one, other, &sum) ? kMost : sum;
}

std::int64_t PeriodsOf(const sOrderinfo& record) {
    const std::string_view registered = record.Text(OrderField::installmentsRegistered);
    return LeadingInteger(registered.empty() ? record.Text(OrderField::totalPeriod) : registered);
}

} // namespace

std::int64_t Times(std::int64_t value, std::int64_t count) {
    std::int64_t product = 0;
    return __builtin_mul_overflow(value, count, &product) ? kMost : product;
}

void RunSums::Add(Need need, std::int64_t value) {
    std::int64_t& sum = needs[static_cast<std::size_t>(need)];
    sum = Sum(sum, value);
}

void RunSums::Add(const RunSums& other) {
    runs += other.runs;
    moved += other.moved;
    for (std::size_t i = 0; i < kNeedCount; ++i)
        Add(static_cast<Need>(i), other.needs[i]);
}

bool CanHaveRun(const sOrderinfo& record, Day from, Day to, const ClosedDays& closed) {
    const std::string_view status = record.Text(OrderField::sipStatus);
    const auto start = ReadServerDay(record.Text(OrderField::startDate));
    const auto schedule = start ? Schedule::Of(*start, record.Text(OrderField::frequency)) : std::nullopt;
    const auto registered = ReadServerDay(record.Text(OrderField::registrationDate));
    if (!schedule || *start > to || (registered && *registered > to)) return false;
    const auto last = IsCancelled(status)   ? ReadServerDay(record.Text(OrderField::cancelledDate))
                      : status == "expired" ? ReadServerDay(record.Text(OrderField::nextExecutionDate))
                                            : std::nullopt;
    if (last && *last < from) return false;
    // What was held up by closed weeks runs behind its own place.
    constexpr int longestDelay = 60;
    const Day earliest = closed.CloseAWeek() ? from - days(longestDelay) : from;
    for (std::int64_t place = schedule->PlaceBy(to); place >= 0; --place) {
        const auto due = schedule->Due(place);
        if (!due) continue;
        const Day expected = closed.FirstOpen(*due);
        if (expected < earliest) return false;
        if (expected <= to) return true;
    }
    return false;
}

namespace {

struct RestOfPlan {
    Schedule schedule;
    std::int64_t place; // of the next run
    std::int64_t left;
    Day next;
    bool hasEnd;
};

std::optional<RestOfPlan> RestOf(const sOrderinfo& record, const ClosedDays& closed) {
    const auto start = ReadServerDay(record.Text(OrderField::startDate));
    const auto next = ReadServerDay(record.Text(OrderField::nextExecutionDate));
    const auto schedule = start ? Schedule::Of(*start, record.Text(OrderField::frequency)) : std::nullopt;
    const auto end = ReadServerDay(record.Text(OrderField::endDate));
    const std::int64_t periods = PeriodsOf(record);
    if (!schedule || !next || (!end && periods <= 0)) return std::nullopt;

    const std::int64_t place =
        schedule->PlaceOf(*next, ReadServerDay(record.Text(OrderField::registrationDate)), closed);
    // What has a next day is not yet at its end.
    const std::int64_t left =
        std::max<std::int64_t>(end ? schedule->PlaceBy(*end) - place + 1 : periods - place, 1);
    return RestOfPlan{*schedule, place, left, *next, end.has_value()};
}

} // namespace

std::optional<std::int64_t> RunsLeft(const sOrderinfo& record, const ClosedDays& closed) {
    const auto rest = RestOf(record, closed);
    if (!rest) return std::nullopt;
    return rest->left;
}

PlanState ReadPlan(const sOrderinfo& record, Day today, const ClosedDays& closed,
                   std::optional<PlanRuns>& plan) {
    const std::string_view status = record.Text(OrderField::sipStatus);
    if (HasEnded(status) || IsCancelled(status)) return PlanState::ended;
    if (status == kPausedStatus) return PlanState::paused;
    const auto rest = RestOf(record, closed);
    if (!rest) return PlanState::unreadable;
    const bool bySell = record.Text(OrderField::side) == "SWP";
    const bool byQuantity = record.Text(OrderField::investType) == "qty";
    const Need need = byQuantity ? (bySell ? Need::deliver : Need::buy) : (bySell ? Need::receive : Need::pay);
    const std::int64_t value = byQuantity ? LeadingInteger(record.Text(OrderField::quantity))
                                          : LeadingInteger(InPaise(record.Text(OrderField::amount)));
    plan = PlanRuns{rest->schedule,
                    rest->place,
                    rest->left,
                    rest->next < today ? closed.FirstOpen(today) : rest->next,
                    need,
                    value,
                    rest->hasEnd && (rest->schedule.Step().days != 1 || rest->place == 0)};
    return PlanState::runs;
}

} // namespace planfold

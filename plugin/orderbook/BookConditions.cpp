#include "plugin/orderbook/BookConditions.h"

#include "plugin/orderentry/Modification.h"
#include "plugin/orderentry/PlannedDates.h"

#include <chrono>

namespace planfold {

namespace {

constexpr std::int64_t kSoonDays = 7, kLongPauseDays = 30, kLastRuns = 3;

std::optional<std::int64_t> DayOf(const sOrderinfo& record, OrderField field) {
    const auto date = ReadServerDate(record.Text(field));
    if (!date) return std::nullopt;
    const auto day = std::chrono::year(date->year) / date->month / date->day;
    if (!day.ok()) return std::nullopt;
    return std::chrono::sys_days(day).time_since_epoch().count();
}

// Days from today to the next execution; none when the record has none to come.
std::optional<std::int64_t> DaysToNext(const sOrderinfo& record, const BookDay& day) {
    const std::string_view status = record.Text(OrderField::sipStatus);
    if (HasEnded(status) || IsCancelled(status)) return std::nullopt;
    const auto next = DayOf(record, OrderField::nextExecutionDate);
    const LocalDateTime& today = day.today;
    if (!next) return std::nullopt;
    return *next
           - std::chrono::sys_days(std::chrono::year(today.year) / today.month / today.day)
                 .time_since_epoch()
                 .count();
}

bool IsPaused(const sOrderinfo& record) {
    return record.Text(OrderField::sipStatus) == kPausedStatus;
}

bool IsDueWithin(const sOrderinfo& record, const BookDay& day, std::int64_t days) {
    const auto toNext = DaysToNext(record, day);
    return toNext && !IsPaused(record) && *toNext >= 0 && *toNext <= days;
}

// Runs from the next one to the last, as the calendar has them.
std::int64_t RunsLeft(std::string_view frequency, const LocalDateTime& next, const LocalDateTime& end) {
    const auto days = [](const LocalDateTime& date) {
        return std::chrono::sys_days(std::chrono::year(date.year) / date.month / date.day);
    };
    const std::int64_t months = (end.year - next.year) * std::int64_t{12} + end.month - next.month;
    if (frequency == "yearly") return months / 12 + 1;
    if (frequency == "monthly") return months + 1;
    if (frequency == "weekly") return (days(end) - days(next)).count() / 7 + 1;
    return TradingDays(next, end, nullptr) + 1;
}

bool EndsSoon(const sOrderinfo& record, const BookDay& day) {
    if (!DaysToNext(record, day) || !DayOf(record, OrderField::endDate)) return false;
    const auto next = ReadServerDate(record.Text(OrderField::nextExecutionDate));
    const auto end = ReadServerDate(record.Text(OrderField::endDate));
    // A day is enough to tell that it is far away.
    constexpr int farYears = 4;
    if (end->year - next->year > farYears) return false;
    return RunsLeft(record.Text(OrderField::frequency), *next, *end) <= kLastRuns;
}

constexpr BookCondition kConditions[] = {
    {"Due Today", false,
     [](const sOrderinfo& record, const BookDay& day) { return IsDueWithin(record, day, 0); }},
    {"Due in 7 Days", false,
     [](const sOrderinfo& record, const BookDay& day) { return IsDueWithin(record, day, kSoonDays); }},
    {"Ending within 3 Runs", false, EndsSoon},
    {"Paused over 30 Days", false,
     [](const sOrderinfo& record, const BookDay& day) {
         const auto toNext = DaysToNext(record, day);
         return toNext && IsPaused(record) && *toNext < -kLongPauseDays;
     }},
    {"Not Run when Due", false,
     [](const sOrderinfo& record, const BookDay& day) {
         const auto toNext = DaysToNext(record, day);
         return toNext && !IsPaused(record) && *toNext < 0;
     }},
    {"Mine Only", true,
     [](const sOrderinfo& record, const BookDay& day) {
         return day.loginId.empty() || record.Text(OrderField::loginId) == day.loginId;
     }},
};

} // namespace

std::span<const BookCondition> BookConditions() {
    return kConditions;
}

} // namespace planfold

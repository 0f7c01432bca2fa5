#include "plugin/orderbook/BookConditions.h"

#include "plugin/base/RunCalendar.h"

#include <chrono>

namespace planfold {

namespace {

constexpr std::int64_t kSoonDays = 7, kLongPauseDays = 30, kLastRuns = 3;

// Days from today to the next execution; none when the record has none to come.
std::optional<std::int64_t> DaysToNext(const sOrderinfo& record, const BookDay& day) {
    const std::string_view status = record.Text(OrderField::sipStatus);
    if (HasEnded(status) || IsCancelled(status)) return std::nullopt;
    const auto next = ReadServerDay(record.Text(OrderField::nextExecutionDate)), today = DayOf(day.today);
    if (!next || !today) return std::nullopt;
    return (*next - *today).count();
}

bool IsPaused(const sOrderinfo& record) {
    return record.Text(OrderField::sipStatus) == kPausedStatus;
}

bool IsDueWithin(const sOrderinfo& record, const BookDay& day, std::int64_t most) {
    const auto toNext = DaysToNext(record, day);
    return toNext && !IsPaused(record) && *toNext >= 0 && *toNext <= most;
}

// Runs from the next one to the last, as the calendar has them.
std::int64_t RunsLeft(std::string_view frequency, Day next, Day end) {
    const std::chrono::year_month_day from(next), to(end);
    const std::int64_t months = (to.year() - from.year()).count() * std::int64_t{12}
                                + static_cast<int>(unsigned{to.month()})
                                - static_cast<int>(unsigned{from.month()});
    if (frequency == "yearly") return months / 12 + 1;
    if (frequency == "monthly") return months + 1;
    if (frequency == "weekly") return (end - next).count() / 7 + 1;
    return ClosedDays().OpenBetween(next, end) + 1;
}

bool EndsSoon(const sOrderinfo& record, const BookDay& day) {
    const auto next = ReadServerDay(record.Text(OrderField::nextExecutionDate)),
               end = ReadServerDay(record.Text(OrderField::endDate));
    if (!end || !DaysToNext(record, day)) return false;
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
    {"Mine Only", true, [](const sOrderinfo& record, const BookDay& day) { return IsOf(record, day.loginId); }},
};

} // namespace

bool IsOf(const sOrderinfo& record, std::string_view user) {
    return user.empty() || record.Text(OrderField::loginId) == user;
}

std::span<const BookCondition> BookConditions() {
    return kConditions;
}

} // namespace planfold

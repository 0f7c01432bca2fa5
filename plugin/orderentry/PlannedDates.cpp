#include "plugin/orderentry/PlannedDates.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Frequencies.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <chrono>

namespace planfold {

namespace {

using std::chrono::year_month_day;

constexpr int kLastYear = 9999;

year_month_day ToCalendar(const LocalDateTime& date) {
    return std::chrono::year(date.year) / date.month / date.day;
}

// A text from outside need not name a day that there is.
bool IsDate(const LocalDateTime& date) {
    const bool inRange = date.year > 0 && date.year <= kLastYear && date.month > 0 && date.month <= 12
                         && date.day > 0 && date.day <= 31;
    return inRange && ToCalendar(date).ok();
}

LocalDateTime FromCalendar(const year_month_day& date) {
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::chrono::weekday Weekday(const LocalDateTime& date) {
    return std::chrono::weekday(std::chrono::sys_days(ToCalendar(date)));
}

// Counted from the start each time, so that the 31st comes back after a shorter month.
year_month_day AddMonths(const year_month_day& start, int months) {
    const auto month = start.year() / start.month() + std::chrono::months(months);
    const auto last = (month / std::chrono::last).day();
    return month / std::min(start.day(), last);
}

// None after the last year. `place` is one of a schedule that ends in it.
std::optional<year_month_day> DueDate(const year_month_day& start, const Frequency& frequency,
                                      std::int64_t place) {
    const int steps = static_cast<int>(place);
    if (static_cast<int>(start.year()) + steps * frequency.months / 12 > kLastYear) return std::nullopt;
    const year_month_day date =
        frequency.months
            ? AddMonths(start, steps * frequency.months)
            : year_month_day(std::chrono::sys_days(start) + std::chrono::days(steps * frequency.days));
    if (static_cast<int>(date.year()) > kLastYear) return std::nullopt;
    return date;
}

} // namespace

std::optional<LocalDateTime> PlannedDate(const Plan& plan, std::int64_t index) {
    const Frequency* frequency = FindFrequency(plan.frequency);
    const bool inside = index >= 0 && index < std::min(plan.Rows(), Plan::kMostInstalments);
    if (!frequency || !inside || !IsDate(plan.start)) return std::nullopt;
    if (index == 0 && plan.next) return plan.next;
    const auto date = DueDate(ToCalendar(plan.start), *frequency, plan.place + index);
    return date ? std::optional(FromCalendar(*date)) : std::nullopt;
}

std::int64_t Plan::Rows() const {
    return std::max(instalments, before.value_or(0));
}

std::optional<std::int64_t> PlaceBy(const Plan& plan, const LocalDateTime& date) {
    const Frequency* frequency = FindFrequency(plan.frequency);
    if (!frequency || !IsDate(plan.start) || !IsDate(date)) return std::nullopt;
    const year_month_day start = ToCalendar(plan.start), by = ToCalendar(date);
    if (by < start) return 0;
    const auto days = (std::chrono::sys_days(by) - std::chrono::sys_days(start)).count();
    // Shorter months make the first guess too small, never too large.
    constexpr int longestMonth = 31;
    std::int64_t place = days / (frequency->days + longestMonth * frequency->months);
    for (auto next = DueDate(start, *frequency, place + 1); next && *next <= by;
         next = DueDate(start, *frequency, place + 1))
        ++place;
    return place;
}

std::int64_t TradingDays(const LocalDateTime& from, const LocalDateTime& to, const NonTradingDates* holidays) {
    std::int64_t count = 0;
    const std::chrono::sys_days end(ToCalendar(to));
    for (std::chrono::sys_days day(ToCalendar(from)); day < end; day += std::chrono::days(1))
        if (!IsNonTradingDay(FromCalendar(day), holidays)) ++count;
    return count;
}

bool IsNonTradingDay(const LocalDateTime& date, const NonTradingDates* holidays) {
    const std::chrono::weekday weekday = Weekday(date);
    if (weekday == std::chrono::Saturday || weekday == std::chrono::Sunday) return true;
    if (!holidays || !holidays->dates) return false;
    const auto number = static_cast<std::uint32_t>(date.year * 10000 + date.month * 100 + date.day);
    return std::binary_search(holidays->dates, holidays->dates + holidays->count, number);
}

std::string PlannedNote(const Plan& plan, std::int64_t row, const NonTradingDates* holidays) {
    if (row >= plan.instalments) return "Dropped";
    const bool added = plan.before && row >= *plan.before;
    const auto date = PlannedDate(plan, row);
    if (!date || !IsNonTradingDay(*date, holidays)) return added ? "Added" : "";
    return added ? "Added, non-trading day" : "Non-trading day";
}

std::string_view WeekdayName(const LocalDateTime& date) {
    static constexpr std::string_view names[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return names[Weekday(date).c_encoding()];
}

std::string FormatPlannedDate(const LocalDateTime& date) {
    return Format("%02d-%s-%04d", date.day, std::string(MonthName(date.month)).c_str(), date.year);
}

std::string DescribePlan(const Plan& plan, std::string_view action, std::string_view investType,
                         std::string_view value) {
    const auto first = PlannedDate(plan, 0);
    if (!first) return {};
    const auto last = PlannedDate(plan, plan.instalments - 1);
    std::string text =
        Format("%lld planned from %s to %s", static_cast<long long>(plan.instalments),
               FormatPlannedDate(*first).c_str(), last ? FormatPlannedDate(*last).c_str() : "...");
    std::int64_t total = 0;
    if (value.empty() || __builtin_mul_overflow(LeadingInteger(value), plan.instalments, &total)) return text;
    if (investType == "qty") return text + Format("\nTotal quantity %lld", static_cast<long long>(total));
    const bool withdrawal = action == "SWP";
    return text + (withdrawal ? "\nTotal withdrawal " : "\nTotal outlay ") + FormatRupees(total);
}

} // namespace planfold

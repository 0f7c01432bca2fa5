#include "plugin/orderentry/PlannedDates.h"

#include "plugin/messaging/Codes.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Text.h"

#include <algorithm>
#include <chrono>

namespace planfold {

namespace {

using std::chrono::year_month_day;

year_month_day ToCalendar(const LocalDateTime& date) {
    return std::chrono::year(date.year) / date.month / date.day;
}

LocalDateTime FromCalendar(const year_month_day& date) {
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::chrono::weekday Weekday(const LocalDateTime& date) {
    return std::chrono::weekday(std::chrono::sys_days(ToCalendar(date)));
}

struct Step {
    std::string_view frequency;
    int days;
    int months;
};
constexpr Step kSteps[] = {{"daily", 1, 0}, {"weekly", 7, 0}, {"monthly", 0, 1}, {"yearly", 0, 12}};

// Counted from the start each time, so that the 31st comes back after a shorter month.
year_month_day AddMonths(const year_month_day& start, int months) {
    const auto month = start.year() / start.month() + std::chrono::months(months);
    const auto last = (month / std::chrono::last).day();
    return month / std::min(start.day(), last);
}

} // namespace

std::optional<LocalDateTime> PlannedDate(const Plan& plan, std::int64_t index) {
    const auto* step = std::ranges::find(kSteps, std::string_view(plan.frequency), &Step::frequency);
    const bool inside = index >= 0 && index < std::min(plan.instalments, Plan::kMostInstalments);
    const year_month_day start = ToCalendar(plan.start);
    if (step == std::end(kSteps) || !inside || !start.ok()) return std::nullopt;
    constexpr int lastYear = 9999;
    const int steps = static_cast<int>(index);
    if (plan.start.year + steps * step->months / 12 > lastYear) return std::nullopt;
    const year_month_day date =
        step->months ? AddMonths(start, steps * step->months)
                     : year_month_day(std::chrono::sys_days(start) + std::chrono::days(steps * step->days));
    if (static_cast<int>(date.year()) > lastYear) return std::nullopt;
    return FromCalendar(date);
}

bool IsNonTradingDay(const LocalDateTime& date, const NonTradingDates* holidays) {
    const std::chrono::weekday weekday = Weekday(date);
    if (weekday == std::chrono::Saturday || weekday == std::chrono::Sunday) return true;
    if (!holidays || !holidays->dates) return false;
    const auto number = static_cast<std::uint32_t>(date.year * 10000 + date.month * 100 + date.day);
    return std::binary_search(holidays->dates, holidays->dates + holidays->count, number);
}

std::string_view WeekdayName(const LocalDateTime& date) {
    static constexpr std::string_view names[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return names[Weekday(date).c_encoding()];
}

std::string FormatPlannedDate(const LocalDateTime& date) {
    return Format("%02d-%s-%04d", date.day, std::string(MonthName(date.month)).c_str(), date.year);
}

std::string FormatRupees(std::int64_t paise) {
    std::string text =
        Format("%lld.%02lld", static_cast<long long>(paise / 100), static_cast<long long>(paise % 100));
    // Three digits before the point, then groups of two.
    constexpr std::size_t pointAndPaise = 3, firstGroup = 3, group = 2;
    for (std::size_t at = pointAndPaise + firstGroup; at < text.size(); at += group + 1)
        text.insert(text.size() - at, ",");
    return text;
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
    return text + (withdrawal ? "\nTotal withdrawal Rs " : "\nTotal outlay Rs ") + FormatRupees(total);
}

} // namespace planfold

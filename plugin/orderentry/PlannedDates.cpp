#include "plugin/orderentry/PlannedDates.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <chrono>

namespace planfold {

namespace {

std::optional<Schedule> ScheduleOf(const Plan& plan) {
    const auto start = DayOf(plan.start);
    return start ? Schedule::Of(*start, plan.frequency) : std::nullopt;
}

// None outside the plan.
std::optional<Run> RunOf(const Plan& plan, std::int64_t index, const ClosedDays& closed) {
    const auto schedule = ScheduleOf(plan);
    if (!schedule) return std::nullopt;
    const auto next = plan.next ? DayOf(*plan.next) : std::nullopt;
    RunsToCome runs(*schedule, plan.place, std::min(plan.Rows(), Plan::kMostInstalments), next, closed);
    for (; index > 0 && runs.Next(); --index) {
    }
    return runs.Next();
}

} // namespace

std::optional<LocalDateTime> PlannedDate(const Plan& plan, std::int64_t index) {
    const auto schedule = ScheduleOf(plan);
    const bool inside = index >= 0 && index < std::min(plan.Rows(), Plan::kMostInstalments);
    if (!schedule || !inside) return std::nullopt;
    if (index == 0 && plan.next) return plan.next;
    const auto due = schedule->Due(plan.place + index);
    return due ? std::optional(DateOf(*due)) : std::nullopt;
}

std::int64_t Plan::Rows() const {
    return std::max(instalments, before.value_or(0));
}

std::string PlannedNote(const Plan& plan, std::int64_t row, const ClosedDays& closed) {
    if (row >= plan.instalments) return "Dropped";
    std::string note = plan.before && row >= *plan.before ? "Added" : "";
    const auto add = [&](const std::string& text) { note += note.empty() ? text : ", " + text; };
    const auto run = RunOf(plan, row, closed);
    if (!run) return note;
    const auto shown = PlannedDate(plan, row);
    if (shown && DayOf(*shown) && closed.Has(*DayOf(*shown))) add("non-trading day");
    if (run->due != run->expected)
        add("due " + DayAndMonth(run->due) + ", expected " + DayAndMonth(run->expected));
    if (!note.empty() && note[0] >= 'a') note[0] = static_cast<char>(note[0] - 'a' + 'A');
    return note;
}

std::string_view WeekdayName(const LocalDateTime& date) {
    static constexpr std::string_view names[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return names[std::chrono::weekday(DayOf(date).value_or(Day())).c_encoding()];
}

std::string FormatPlannedDate(const LocalDateTime& date) {
    return Format("%02d-%s-%04d", date.day, std::string(MonthName(date.month)).c_str(), date.year);
}

std::string FormatPlannedDate(Day day) {
    return FormatPlannedDate(DateOf(day));
}

std::string DayAndMonth(Day day) {
    constexpr std::size_t year = 5; // with its hyphen
    const std::string text = FormatPlannedDate(day);
    return text.substr(0, text.size() - year);
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

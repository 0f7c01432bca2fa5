#include "plugin/orderentry/ModifyPlan.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>

namespace planfold {

namespace {

std::string Count(std::int64_t number) {
    return Format("%lld", static_cast<long long>(number));
}

std::string InsteadOf(const std::string& now, const std::string& before) {
    return now == before || before.empty() ? now : now + " instead of " + before;
}

std::string DescribeCount(const ModifiedPlan& plan) {
    const std::int64_t periods = plan.periods > 0 ? plan.periods : plan.periodsBefore;
    if (!plan.progress)
        return InsteadOf(Count(periods) + " registered",
                         periods == plan.periodsBefore ? "" : Count(plan.periodsBefore));
    const std::int64_t done = plan.progress->done;
    const std::string about = plan.progress->exact ? "" : "about ";
    if (periods <= done) return about + Count(done) + " have run, so that " + Count(periods) + " are too few";
    const auto left = [&](std::int64_t all) { return Count(all - done) + " of " + Count(all); };
    return about
           + InsteadOf(left(periods) + " left", periods == plan.periodsBefore ? "" : left(plan.periodsBefore));
}

// Paise in rupees, or shares as they are; `times` as often. Empty when the value is, or when it is too much.
std::string Worth(const ModifiedPlan& plan, const std::string& value, std::int64_t times) {
    std::int64_t total = 0;
    if (value.empty() || __builtin_mul_overflow(LeadingInteger(value), times, &total)) return {};
    return plan.investType == "qty" ? Count(total) : GroupedRupees(total);
}

std::string DescribeValue(const ModifiedPlan& plan) {
    const std::string unit = plan.investType == "qty" ? "quantity " : "Rs ";
    const std::string before = Worth(plan, plan.valueBefore, 1), now = Worth(plan, plan.value, 1);
    if (now.empty()) return before.empty() ? "" : ": now " + unit + before + " a run";
    return ": " + InsteadOf(unit + now + " a run", now == before ? "" : before);
}

// The value is that of all runs to come.
std::string DescribeTotal(const ModifiedPlan& plan, const Plan& toCome) {
    const std::string now = Worth(plan, plan.value, toCome.instalments);
    if (now.empty()) return {};
    const std::string before = Worth(plan, plan.valueBefore, toCome.before.value_or(0));
    const std::string what = plan.investType == "qty" ? "Quantity to come "
                             : plan.action == "SWP"   ? "Withdrawal to come Rs "
                                                      : "Outlay to come Rs ";
    return "\n" + what + InsteadOf(now, before);
}

std::string LastOf(const Plan& plan, std::int64_t instalments) {
    const auto last = PlannedDate(plan, instalments - 1);
    return last ? FormatPlannedDate(*last) : std::string();
}

} // namespace

std::optional<Progress> ProgressOf(const SipRegistration& registration, std::int64_t periods,
                                   const ClosedDays& closed) {
    const auto start = ReadServerDay(registration.startDate);
    const auto next = ReadServerDay(registration.nextExecutionDate);
    const auto schedule = start ? Schedule::Of(*start, registration.frequency) : std::nullopt;
    if (!schedule || !next || periods <= 0) return std::nullopt;

    const std::int64_t place = schedule->PlaceOf(*next, std::nullopt, closed);
    // After a pause the plan ends later: so many places of its schedule have lapsed.
    std::int64_t lapsed = 0;
    if (const auto end = ReadServerDay(registration.endDate)) lapsed = schedule->PlaceBy(*end) - (periods - 1);
    Progress progress{place - std::clamp<std::int64_t>(lapsed, 0, place), place, DateOf(*next), true};
    // A week can go by on days that only the server closes, and each of them counts for a daily plan.
    const int days = schedule->Step().days;
    const auto due = schedule->Due(place);
    if (days == 1) progress.exact = progress.done == 0;
    if (days > 1) progress.exact = due && closed.OpenBetween(*due, *next) == 0;
    // What has a next day is not yet at its end.
    if (lapsed != 0 || progress.done >= periods) progress.exact = false;
    progress.done = std::min(progress.done, periods - 1);
    return progress;
}

Plan PlanToCome(const SipRegistration& registration, const ModifiedPlan& modified) {
    const std::int64_t periods = modified.periods > 0 ? modified.periods : modified.periodsBefore;
    const auto start = ReadServerDate(registration.startDate);
    if (!start) return {};
    Plan plan{*start, registration.frequency, periods};
    if (!modified.progress) return plan;
    plan.done = modified.progress->done;
    plan.place = modified.progress->place;
    plan.next = modified.progress->next;
    plan.instalments = std::max<std::int64_t>(periods - plan.done, 0);
    plan.before = modified.periodsBefore - plan.done;
    return plan;
}

std::string DescribeModification(const ModifiedPlan& modified, const Plan& toCome) {
    std::string text = DescribeCount(modified) + DescribeValue(modified);
    text.front() = text.front() == 'a' ? 'A' : text.front();
    if (!modified.progress || toCome.instalments == 0) return text;
    text += modified.paused ? "\nPaused" : "\nNext " + FormatPlannedDate(modified.progress->next);
    const std::string last = LastOf(toCome, toCome.instalments);
    if (!last.empty()) text += ", last planned " + InsteadOf(last, LastOf(toCome, toCome.before.value_or(0)));
    return text + DescribeTotal(modified, toCome);
}

} // namespace planfold

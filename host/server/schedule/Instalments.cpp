#include "host/server/schedule/Instalments.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

// The names of the fields in the journal.
enum JournalTag : std::uint32_t { kTagNumber = 1, kTagPlace = 2, kTagAfter = 3 };

constexpr std::int64_t kMostInstalments = 10'000'000;

void SetNumber(FieldRecord& fields, std::uint32_t tag, std::int64_t number) {
    fields.Set(tag, std::to_string(number));
}

// Nothing when it is absent or absurd.
std::optional<int> Number(const FieldRecord& fields, std::uint32_t tag) {
    const auto number = WholeNumber(fields.Text(tag));
    return number && *number <= kMostInstalments ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

} // namespace

FieldRecord PlanProgress::Fields() const {
    FieldRecord fields;
    SetNumber(fields, kTagNumber, executed);
    SetNumber(fields, kTagPlace, place);
    SetNumber(fields, kTagAfter, after.time_since_epoch().count());
    return fields;
}

std::optional<PlanProgress> PlanProgress::FromFields(const FieldRecord& fields) {
    const auto executed = Number(fields, kTagNumber);
    const auto place = Number(fields, kTagPlace);
    const auto after = Number(fields, kTagAfter);
    if (!executed || !place || !after) return std::nullopt;
    return PlanProgress{*executed, *place, sys_days(days(*after))};
}

FieldRecord Instalment::Fields() const {
    FieldRecord fields;
    SetNumber(fields, kTagNumber, number);
    SetNumber(fields, kTagPlace, place);
    return fields;
}

std::optional<Instalment> Instalment::FromFields(const FieldRecord& fields) {
    const auto number = Number(fields, kTagNumber);
    const auto place = Number(fields, kTagPlace);
    if (!number || *number == 0 || !place) return std::nullopt;
    return Instalment{*number, *place};
}

PlanProgress BeginPlan(const InstalmentPlan& plan, sys_days today) {
    return {0, InstalmentsBefore(plan.start, plan.frequency, today), {}};
}

sys_days ExecutionDay(const InstalmentPlan& plan, const PlanProgress& progress, const MarketDays& market) {
    const sys_days due = InstalmentDate(plan.start, plan.frequency, progress.place);
    // A day that was restricted until it was past does not come back.
    return market.FirstOpen(std::max({due, progress.after + days(1), market.restricted.Since()}));
}

void LapseBefore(sys_days day, const InstalmentPlan& plan, const MarketDays& market, PlanProgress& progress) {
    for (sys_days next; (next = ExecutionDay(plan, progress, market)) < day; ++progress.place)
        progress.after = next;
}

std::chrono::year_month_day LastDueDate(const InstalmentPlan& plan, const PlanProgress& progress) {
    return InstalmentDate(plan.start, plan.frequency, progress.place + plan.periods - progress.executed - 1);
}

} // namespace vesk

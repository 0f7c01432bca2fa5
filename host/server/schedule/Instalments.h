// Which day each instalment of a plan is executed on.
//
// That is the first open day which is not before the due date and is after the plan's execution before, so no
// two instalments of a plan share a day. Due dates are counted from the start, never from the date before, so
// that the 31st comes back after a shorter month. An instalment whose day comes while the plan is paused
// lapses: it keeps its place in the schedule but is none of the plan's number, so that the end moves.
//
// Thread: any; pure functions.
#pragma once

#include "host/server/schedule/RestrictedDays.h"

#include <chrono>
#include <optional>
#include <string_view>

namespace vesk {

struct InstalmentPlan {
    std::chrono::year_month_day start;
    std::string_view frequency;
    int periods;
};

// How far a plan is.
struct PlanProgress {
    int executed = 0;              // instalments
    int place = 0;                 // of the next one in the schedule, from 0
    std::chrono::sys_days after{}; // the next one is executed behind this day

    // The journal's form and back.
    FieldRecord Fields() const;
    static std::optional<PlanProgress> FromFields(const FieldRecord& fields);
    bool operator==(const PlanProgress&) const = default;
};

// One instalment among those of its plan.
struct Instalment {
    int number; // from 1
    int place;  // in the schedule, from 0

    FieldRecord Fields() const;
    static std::optional<Instalment> FromFields(const FieldRecord& fields);
};

// How far a plan is that is made today: what fell due before has lapsed.
PlanProgress BeginPlan(const InstalmentPlan& plan, std::chrono::sys_days today);
std::chrono::sys_days ExecutionDay(const InstalmentPlan& plan, const PlanProgress& progress,
                                   const MarketDays& market);
// Lets lapse what would have been executed before `day`.
void LapseBefore(std::chrono::sys_days day, const InstalmentPlan& plan, const MarketDays& market,
                 PlanProgress& progress);
// The due date of the last instalment, when no more of them lapse.
std::chrono::year_month_day LastDueDate(const InstalmentPlan& plan, const PlanProgress& progress);

} // namespace vesk

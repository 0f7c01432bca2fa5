// What a modification makes of a registered plan: what is left of it, old beside new.
#pragma once

#include "plugin/orderentry/Modification.h"
#include "plugin/orderentry/PlannedDates.h"

#include <cstdint>
#include <optional>
#include <string>

namespace planfold {

// How far a registration is, as its dates tell: the server says no number.
struct Progress {
    std::int64_t done;
    std::int64_t place; // of the next instalment in the schedule
    LocalDateTime next;
    // False where days that only the server knows, or a pause, can make it some more or less.
    bool exact;
};

// `periods` are those of the registration. None when its dates cannot be read.
std::optional<Progress> ProgressOf(const SipRegistration& registration, std::int64_t periods,
                                   const ClosedDays& closed);

struct ModifiedPlan {
    std::int64_t periodsBefore = 0;
    std::int64_t periods = 0; // 0: none is given
    std::optional<Progress> progress;
    std::string action;
    std::string investType;  // "value" or "qty"
    std::string valueBefore; // paise or shares; empty: unreadable
    std::string value;
    bool paused = false;
};

// The dates that are left, with those that a longer plan adds or a shorter one drops.
Plan PlanToCome(const SipRegistration& registration, const ModifiedPlan& modified);

// What the form says of it, in up to three lines.
std::string DescribeModification(const ModifiedPlan& modified, const Plan& toCome);

} // namespace planfold

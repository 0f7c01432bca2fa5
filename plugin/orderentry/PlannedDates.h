// The dates on which a SIP would fall by the calendar, and what the server makes of those on days without
// trading. Planned only: the server decides.
#pragma once

#include "plugin/base/RunCalendar.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

struct Plan {
    LocalDateTime start; // its time of day is not used
    std::string frequency;
    std::int64_t instalments = 0; // 0: there is no plan

    // Of a registered plan the instalments are those to come: behind so many, and so many places of the
    // schedule, the first of them on the server's own day. `before` is their number as registered.
    std::int64_t done = 0;
    std::int64_t place = 0;
    std::optional<LocalDateTime> next{};
    std::optional<std::int64_t> before{};

    // More are not listed.
    static constexpr std::int64_t kMostInstalments = 100000;
    // How many are listed: those that a change drops as well.
    std::int64_t Rows() const;
};

// The plan's date number `index`, from 0. A month or year without the start's day takes its last day. None
// for an unknown frequency, an index outside the plan, or a date after the year 9999.
std::optional<LocalDateTime> PlannedDate(const Plan& plan, std::int64_t index);

// What stands beside a row of the listed dates: "due 22-Nov, expected 23-Nov" where the server moves it.
std::string PlannedNote(const Plan& plan, std::int64_t row, const ClosedDays& closed);

// "Mon" to "Sun".
std::string_view WeekdayName(const LocalDateTime& date);

// "22-Dec-2026".
std::string FormatPlannedDate(const LocalDateTime& date);
std::string FormatPlannedDate(Day day);
// "22-Dec".
std::string DayAndMonth(Day day);

// What the form says of its plan in two lines; empty when there is none. `investType` and `value` are the
// server's words ("value" and paise, or "qty" and shares); an empty value leaves the total out.
std::string DescribePlan(const Plan& plan, std::string_view action, std::string_view investType,
                         std::string_view value);

} // namespace planfold

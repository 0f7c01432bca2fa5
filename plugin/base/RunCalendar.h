// On which days the instalments of a plan fall due, and on which days the server executes them. Whatever
// foretells a run goes by this one rule.
//
// An instalment is executed on the first open day which is not before its due date and is behind the plan's
// execution before, so that no two of a plan share a day. Due dates are counted from the start, never from the
// date before: the 31st comes back after a shorter month.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/base/Frequencies.h"
#include "sdk/HostRecords.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace planfold {

using Day = std::chrono::sys_days;

// None when there is no such day in the years 1 to 9999.
std::optional<Day> DayOf(const LocalDateTime& date);
LocalDateTime DateOf(Day day);

// "05-Mar-2027", as the server writes a day, whatever stands behind it. None for anything else.
std::optional<Day> ReadServerDay(std::string_view text);

// Days of every month of a year on which nothing is executed.
struct RestrictedRange {
    int year = 0;
    int from = 0;
    int to = 0;
};

// Weekends, and what the host and the server close.
class ClosedDays {
public:
    // `host` may be null. Its dates are copied: it may replace them.
    explicit ClosedDays(const NonTradingDates* host = nullptr,
                        std::span<const RestrictedRange> restricted = {});

    bool Has(Day day) const { return FirstOpen(day) != day; }
    // From this day on.
    Day FirstOpen(Day from) const;
    // Open days from the first one on and before the second; 0 when that is not later.
    std::int64_t OpenBetween(Day from, Day end) const;
    // Whether seven days that follow each other are closed anywhere.
    bool CloseAWeek() const { return m_closeAWeek; }

private:
    std::int64_t CountBefore(Day day) const;

    std::vector<Day> m_days; // ascending, none of a weekend
    std::vector<Day> m_open; // behind each of them the first open one
    bool m_closeAWeek = false;
};

// The due dates of a plan, by their place from 0.
class Schedule {
public:
    // None for an unknown frequency.
    static std::optional<Schedule> Of(Day start, std::string_view frequency);

    const Frequency& Step() const { return *m_frequency; }
    // None behind the year 9999.
    std::optional<Day> Due(std::int64_t place) const;
    // The last place that is due by the day; 0 for an earlier one.
    std::int64_t PlaceBy(Day day) const;
    // The place of the instalment that the server executes on its day `next`: more than one can be due by then.
    // What was due before the day of registration has lapsed.
    std::int64_t PlaceOf(Day next, std::optional<Day> registered, const ClosedDays& closed) const;

private:
    Schedule(Day start, const Frequency& frequency) : m_start(start), m_frequency(&frequency) {}

    Day m_start;
    const Frequency* m_frequency;
};

struct Run {
    Day due;
    Day expected;
};

// The runs of a plan, one after another.
class RunsToCome {
public:
    // `left` of them, from this place on; the first is expected on `first`, when that is given.
    RunsToCome(const Schedule& schedule, std::int64_t place, std::int64_t left, std::optional<Day> first,
               const ClosedDays& closed)
        : m_schedule(schedule), m_closed(closed), m_first(first), m_place(place), m_left(left) {}

    std::optional<Run> Next();

private:
    const Schedule& m_schedule;
    const ClosedDays& m_closed;
    std::optional<Day> m_first;
    std::optional<Day> m_after; // the execution before
    std::int64_t m_place;
    std::int64_t m_left;
};

} // namespace planfold

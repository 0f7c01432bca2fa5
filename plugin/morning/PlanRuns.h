// The runs to come of one registration as the book knows it, and what they need of the client.
#pragma once

#include "plugin/base/RunCalendar.h"
#include "plugin/orderbook/OrderInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace planfold {

// Paise for what is bought or sold by value, shares for what is bought or sold by quantity.
enum class Need : std::uint8_t { pay, receive, buy, deliver, count };
inline constexpr std::size_t kNeedCount = static_cast<std::size_t>(Need::count);

// `count` times the value, held at the end of the range.
std::int64_t Times(std::int64_t value, std::int64_t count);

struct RunSums {
    std::int64_t runs = 0;
    std::int64_t moved = 0; // of them, those that fall due on closed days
    std::array<std::int64_t, kNeedCount> needs{};

    std::int64_t operator[](Need need) const { return needs[static_cast<std::size_t>(need)]; }
    void Add(Need need, std::int64_t value);
    void Add(const RunSums& other);
    bool operator==(const RunSums&) const = default;
};

struct PlanRuns {
    Schedule schedule;
    std::int64_t place; // of the first of them
    std::int64_t left;
    Day first; // expected
    Need need;
    std::int64_t value; // of each
    bool isEndCertain;  // days that only the server closed can have taken runs of a daily plan
};

enum class PlanState { runs, paused, ended, unreadable };
// What was to run before today and has not is expected on the first open day. `plan` is set for one that runs.
PlanState ReadPlan(const sOrderinfo& record, Day today, const ClosedDays& closed,
                   std::optional<PlanRuns>& plan);

// How many runs an ended plan had still to come, at least one; none when its fields do not tell.
std::optional<std::int64_t> RunsLeft(const sOrderinfo& record, const ClosedDays& closed);

// Whether the plan can have run in these days, both included, or has ended before: one that did not run is no
// fault.
bool CanHaveRun(const sOrderinfo& record, Day from, Day to, const ClosedDays& closed);

} // namespace planfold

// On which days the market is open, as far as instalments go.
//
// Thread: any; plain values.
#pragma once

#include "host/server/schedule/RestrictedDays.h"

#include <chrono>
#include <vector>

namespace vesk {

struct MarketDays {
    // Neither a weekend, nor a non-trading day, nor restricted.
    bool IsOpen(std::chrono::sys_days day) const;
    // From this day on.
    std::chrono::sys_days FirstOpen(std::chrono::sys_days from) const;

    std::vector<std::chrono::year_month_day> nonTrading{}; // ascending
    RestrictedDays restricted{};
};

} // namespace vesk

#include "host/server/schedule/MarketDays.h"

#include <algorithm>

namespace vesk {

bool MarketDays::IsOpen(std::chrono::sys_days day) const {
    const std::chrono::weekday weekday(day);
    return weekday != std::chrono::Saturday && weekday != std::chrono::Sunday
           && !std::binary_search(nonTrading.begin(), nonTrading.end(), std::chrono::year_month_day(day))
           && !restricted.Has(day);
}

std::chrono::sys_days MarketDays::FirstOpen(std::chrono::sys_days from) const {
    while (!IsOpen(from))
        from += std::chrono::days(1);
    return from;
}

} // namespace vesk

// The days on which the exchanges are closed beside Saturdays and Sundays.
#pragma once

#include "host/files/Files.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class TradingCalendar {
public:
    // The file's dates are yyyy-mm-dd, in any order, each at most once.
    static Loaded<TradingCalendar> Load(const std::string& path);
    static Loaded<TradingCalendar> Parse(std::string_view text, std::string_view fileName);

    // Days beside the file's, as Dates() has them, in any order.
    void Add(std::span<const std::uint32_t> dates);
    // Ascending without doubles, each as yyyymmdd.
    std::span<const std::uint32_t> Dates() const { return m_dates; }

private:
    std::vector<std::uint32_t> m_dates;
};

} // namespace vesk

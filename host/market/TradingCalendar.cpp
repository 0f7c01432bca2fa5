#include "host/market/TradingCalendar.h"

#include "base/Text.h"
#include "host/market/CsvLines.h"

#include <algorithm>
#include <chrono>

namespace vesk {
namespace {

std::optional<std::uint32_t> DateNumber(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    const auto year = base::ReadNumber<long long>(text.substr(0, 4));
    const auto month = base::ReadNumber<long long>(text.substr(5, 2));
    const auto day = base::ReadNumber<long long>(text.substr(8, 2));
    if (!year || !month || !day || *year < 1970) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    return static_cast<std::uint32_t>(*year * 10'000 + *month * 100 + *day);
}

} // namespace

Loaded<TradingCalendar> TradingCalendar::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<TradingCalendar> TradingCalendar::Parse(std::string_view text, std::string_view fileName) {
    TradingCalendar calendar;
    auto fault = ReadCsv(text, fileName, "date,occasion",
                         [&](std::span<const std::string_view> fields) -> std::optional<std::string> {
                             const auto date = DateNumber(fields[0]);
                             if (!date) return "\"" + std::string(fields[0]) + "\" is not a date yyyy-mm-dd";
                             const auto place = std::ranges::lower_bound(calendar.m_dates, *date);
                             if (place != calendar.m_dates.end() && *place == *date)
                                 return std::string(fields[0]) + " stands here a second time";
                             calendar.m_dates.insert(place, *date);
                             return std::nullopt;
                         });
    if (fault) return *std::move(fault);
    return calendar;
}

void TradingCalendar::Add(std::span<const std::uint32_t> dates) {
    m_dates.insert(m_dates.end(), dates.begin(), dates.end());
    std::ranges::sort(m_dates);
    m_dates.erase(std::unique(m_dates.begin(), m_dates.end()), m_dates.end());
}

} // namespace vesk

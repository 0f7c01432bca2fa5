#include "plugin/base/RunCalendar.h"

#include "plugin/base/Codes.h"

#include <algorithm>
#include <charconv>

namespace planfold {

namespace {

using std::chrono::days;
using std::chrono::year_month_day;

constexpr int kLastYear = 9999;

bool IsWeekend(Day day) {
    const std::chrono::weekday weekday(day);
    return weekday == std::chrono::Saturday || weekday == std::chrono::Sunday;
}

Day BehindWeekend(Day day) {
    while (IsWeekend(day))
        day += days(1);
    return day;
}

// Weekdays before the day, since a Monday.
std::int64_t WeekdaysBefore(Day day) {
    constexpr std::int64_t monday = 4; // 5 January 1970
    const std::int64_t number = day.time_since_epoch().count() - monday;
    const std::int64_t weeks = number >= 0 ? number / 7 : (number - 6) / 7;
    return weeks * 5 + std::min<std::int64_t>(number - weeks * 7, 5);
}

std::optional<int> ReadWhole(std::string_view text) {
    int number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    return fault == std::errc() && end != text.data() ? std::optional(number) : std::nullopt;
}

// Counted from the start each time, so that the 31st comes back after a shorter month.
year_month_day AddMonths(const year_month_day& start, int months) {
    const auto month = start.year() / start.month() + std::chrono::months(months);
    return month / std::min(start.day(), (month / std::chrono::last).day());
}

} // namespace

std::optional<Day> DayOf(const LocalDateTime& date) {
    const bool inRange = date.year > 0 && date.year <= kLastYear && date.month > 0 && date.day > 0;
    if (!inRange) return std::nullopt;
    const year_month_day day = std::chrono::year(date.year) / date.month / date.day;
    return day.ok() ? std::optional<Day>(day) : std::nullopt;
}

LocalDateTime DateOf(Day day) {
    const year_month_day date(day);
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::optional<Day> ReadServerDay(std::string_view text) {
    const std::size_t month = text.find('-');
    const std::size_t year = text.find('-', month == text.npos ? month : month + 1);
    if (year == text.npos) return std::nullopt;
    const auto dayNumber = ReadWhole(text), yearNumber = ReadWhole(text.substr(year + 1));
    if (!dayNumber || !yearNumber) return std::nullopt;
    return DayOf({*yearNumber, MonthNumber(text.substr(month + 1, year - month - 1)), *dayNumber});
}

ClosedDays::ClosedDays(const NonTradingDates* host, std::span<const RestrictedRange> restricted) {
    const auto add = [&](const LocalDateTime& date) {
        const auto day = DayOf(date);
        if (day && !IsWeekend(*day)) m_days.push_back(*day);
    };
    for (std::uint32_t i = 0; host && host->dates && i < host->count; ++i) {
        const int number = static_cast<int>(std::min<std::uint32_t>(host->dates[i], INT32_MAX));
        add({number / 10000, number / 100 % 100, number % 100});
    }
    for (const RestrictedRange& range : restricted)
        for (int month = 1; month <= 12; ++month)
            for (int day = std::max(range.from, 1); day <= std::min(range.to, 31); ++day)
                add({range.year, month, day});
    std::ranges::sort(m_days);
    m_days.erase(std::unique(m_days.begin(), m_days.end()), m_days.end());

    m_open.resize(m_days.size());
    for (std::size_t i = m_days.size(); i-- > 0;) {
        const Day next = BehindWeekend(m_days[i] + days(1));
        m_open[i] = i + 1 < m_days.size() && m_days[i + 1] == next ? m_open[i + 1] : next;
    }
    for (std::size_t i = 0; i < m_days.size(); ++i)
        if (m_open[i] - m_days[i] >= days(5)) m_closeAWeek = true;
}

Day ClosedDays::FirstOpen(Day from) const {
    from = BehindWeekend(from);
    const auto at = std::ranges::lower_bound(m_days, from);
    return at != m_days.end() && *at == from ? m_open[static_cast<std::size_t>(at - m_days.begin())] : from;
}

std::int64_t ClosedDays::CountBefore(Day day) const {
    return std::ranges::lower_bound(m_days, day) - m_days.begin();
}

std::int64_t ClosedDays::OpenBetween(Day from, Day end) const {
    if (end <= from) return 0;
    return WeekdaysBefore(end) - WeekdaysBefore(from) - (CountBefore(end) - CountBefore(from));
}

std::optional<Schedule> Schedule::Of(Day start, std::string_view frequency) {
    const Frequency* found = FindFrequency(frequency);
    return found ? std::optional(Schedule(start, *found)) : std::nullopt;
}

std::optional<Day> Schedule::Due(std::int64_t place) const {
    constexpr std::int64_t mostDays = (kLastYear + 1) * std::int64_t{366};
    if (place < 0 || place > mostDays || place * m_frequency->days > mostDays) return std::nullopt;
    const int steps = static_cast<int>(place);
    const year_month_day start(m_start);
    if (static_cast<std::int64_t>(int(start.year())) + place * m_frequency->months / 12 > kLastYear)
        return std::nullopt;
    const year_month_day date = m_frequency->months ? AddMonths(start, steps * m_frequency->months)
                                                    : year_month_day(m_start + days(place * m_frequency->days));
    return int(date.year()) > kLastYear ? std::nullopt : std::optional<Day>(date);
}

std::int64_t Schedule::PlaceBy(Day day) const {
    if (day < m_start) return 0;
    // Shorter months make the first guess too small, never too large.
    constexpr int longestMonth = 31;
    std::int64_t place = (day - m_start).count() / (m_frequency->days + longestMonth * m_frequency->months);
    for (auto next = Due(place + 1); next && *next <= day; next = Due(place + 1))
        ++place;
    return place;
}

// A place takes an open day, from its due date on: whichever place left the fewest behind it says how far the
// plan is.
std::int64_t Schedule::PlaceOf(Day next, std::optional<Day> registered, const ClosedDays& closed) const {
    std::int64_t first = 0;
    if (registered && *registered > m_start) first = PlaceBy(*registered - days(1)) + 1;
    const std::int64_t last = std::max(PlaceBy(next), first);
    const auto reached = [&](std::int64_t from) {
        const auto due = Due(from);
        return due ? from + closed.OpenBetween(*due, next) : from;
    };
    // Day by day, nothing is made up for.
    if (m_frequency->days == 1) return std::min(last, reached(first));
    std::int64_t place = last;
    // Between two other places there is an open day, unless a whole week is closed.
    constexpr std::int64_t furthest = 120;
    for (std::int64_t from = last; closed.CloseAWeek() && from >= std::max(first, last - furthest); --from)
        place = std::min(place, reached(from));
    return place;
}

std::optional<Run> RunsToCome::Next() {
    const auto due = m_left > 0 ? m_schedule.Due(m_place) : std::nullopt;
    if (!due) return std::nullopt;
    const Day expected = !m_after && m_first
                             ? *m_first
                             : m_closed.FirstOpen(m_after ? std::max(*due, *m_after + days(1)) : *due);
    m_after = expected;
    ++m_place;
    --m_left;
    return Run{*due, expected};
}

} // namespace planfold

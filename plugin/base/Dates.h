// Local dates and times as the windows and requests use them.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace planfold {

struct LocalDateTime {
    int year = 1970;
    int month = 1; // 1 to 12
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;

    auto operator<=>(const LocalDateTime&) const = default;
    LocalDateTime Midnight() const { return {year, month, day, 0, 0, 0}; }
};

constexpr std::int64_t kSecondsPerDay = 86400;

// Seconds since 1 January 1970; -1 when the platform cannot tell.
std::int64_t ToSeconds(const LocalDateTime& local);
LocalDateTime ToLocal(std::int64_t seconds);

bool IsLeapYear(int year);

// Days from `date` to the same date `years` later, counted year by year: from
// January of a leap year the count stays one day short.
int CountDaysInYears(const LocalDateTime& date, int years);

// Whether `date`, with its time of day, is later than the midnight so many days after that of `day`. The days
// of the calendar count, whatever the clocks do meanwhile.
bool IsLater(const LocalDateTime& date, const LocalDateTime& day, int days);

// "05/Mar/2027".
std::string FormatPickerDate(const LocalDateTime& date);

// A typed date (day, month as number or name, year; separated by "/", or by "-" when it holds no "/") as
// seconds since 1 January 1970 for local midnight, daylight saving off. -1: a part is missing;
// -2: no such date.
std::int64_t ParseDate(std::string_view text);
// The same of a date that is no text.
std::int64_t DateSeconds(const LocalDateTime& date);

} // namespace planfold

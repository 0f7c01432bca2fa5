// Dates and whole numbers that stand in cells of text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvex {

inline constexpr std::int64_t kSecondsOfDay = 86400;

// "05-Mar-2027", "05/03/2027" or "2027-03-05", with "-" or "/", and a time of day behind a blank where there is
// one ("14:02" or "14:02:31"): seconds since the start of 1970, of no time zone. None for anything else.
std::optional<std::int64_t> ReadDate(std::string_view text);
inline std::int64_t DayOf(std::int64_t seconds) {
    return (seconds >= 0 ? seconds : seconds - kSecondsOfDay + 1) / kSecondsOfDay;
}
// The day on the machine's clock, counted as those of dates are.
std::int64_t LocalDay();
// "2027-03-05", which every spreadsheet knows for a date, with the time behind it where the cell has one; none
// when the cell is no date.
std::optional<std::string> IsoDate(std::string_view cell);

// Where a cell of text stands among others: whole numbers by value come first, then dates, then what has no
// value. Cells of one value have the same text, or are the same moment. It fits 62 bits.
std::optional<std::uint64_t> ReadTextValue(std::string_view text);
// Most texts have none by their first character.
inline bool HasTextValue(std::string_view text) {
    return !text.empty() && ((text.front() >= '0' && text.front() <= '9') || text.front() == '-')
           && ReadTextValue(text).has_value();
}

} // namespace korvex

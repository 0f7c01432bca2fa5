#include "host/korvexcontrols/model/CellDates.h"

#include "base/Text.h"
#include "host/korvexcontrols/model/Cells.h"

#include <array>
#include <chrono>
#include <ctime>

namespace korvex {
namespace {

constexpr bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Takes so many digits, or none.
std::optional<int> TakeDigits(std::string_view& text, std::size_t least, std::size_t most) {
    int number = 0;
    std::size_t length = 0;
    for (; length < most && length < text.size() && IsDigit(text[length]); ++length)
        number = number * 10 + (text[length] - '0');
    if (length < least) return std::nullopt;
    text.remove_prefix(length);
    return number;
}

bool Take(std::string_view& text, char character) {
    if (!text.starts_with(character)) return false;
    text.remove_prefix(1);
    return true;
}

std::optional<int> TakeMonth(std::string_view& text) {
    constexpr std::string_view months = "janfebmaraprmayjunjulaugsepoctnovdec";
    constexpr std::size_t letters = 3;
    if (text.size() < letters || IsDigit(text.front())) return TakeDigits(text, 1, 2);
    for (std::size_t at = 0; at < months.size(); at += letters)
        if (StartsWithFolded(text, months.substr(at, letters))) {
            text.remove_prefix(letters);
            return static_cast<int>(at / letters) + 1;
        }
    return std::nullopt;
}

// Seconds since midnight; 0 where there is no time.
std::optional<std::int64_t> ReadTime(std::string_view text) {
    if (text.empty()) return 0;
    std::array<int, 3> parts{};
    constexpr std::array<int, 3> ends{24, 60, 60};
    for (std::size_t i = 0; i < parts.size() && (i < 2 || !text.empty()); ++i) {
        if (!Take(text, i ? ':' : ' ')) return std::nullopt;
        const auto part = TakeDigits(text, 2, 2);
        if (!part || *part >= ends[i]) return std::nullopt;
        parts[i] = *part;
    }
    if (!text.empty()) return std::nullopt;
    return (std::int64_t{60} * parts[0] + parts[1]) * 60 + parts[2];
}

} // namespace

std::optional<std::int64_t> ReadDate(std::string_view text) {
    constexpr std::size_t shortest = 8;
    if (text.size() < shortest || !IsDigit(text.front())) return std::nullopt;
    const bool yearFirst = IsDigit(text[2]);
    auto first = TakeDigits(text, yearFirst ? 4 : 1, yearFirst ? 4 : 2);
    const char separator = text.empty() ? '\0' : text.front();
    if (!first || (separator != '-' && separator != '/') || !Take(text, separator)) return std::nullopt;
    const auto month = TakeMonth(text);
    if (!month || !Take(text, separator)) return std::nullopt;
    auto last = TakeDigits(text, yearFirst ? 1 : 4, yearFirst ? 2 : 4);
    if (!last) return std::nullopt;
    if (yearFirst) std::swap(first, last);
    const std::chrono::year_month_day date(std::chrono::year(*last),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*first)));
    const auto time = ReadTime(text);
    if (!date.ok() || !time) return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count() * kSecondsOfDay + *time;
}

std::int64_t LocalDay() {
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    if (!local) return DayOf(now);
    const auto date = std::chrono::year(local->tm_year + 1900) / (local->tm_mon + 1) / local->tm_mday;
    return std::chrono::sys_days(date).time_since_epoch().count();
}

std::optional<std::string> IsoDate(std::string_view cell) {
    const auto seconds = ReadDate(cell);
    if (!seconds) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::sys_days(std::chrono::days(DayOf(*seconds))));
    const std::size_t time = cell.find(' ');
    return base::Format("%04d-%02u-%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                        static_cast<unsigned>(date.day()))
           + std::string(time == cell.npos ? std::string_view() : cell.substr(time));
}

std::optional<std::uint64_t> ReadTextValue(std::string_view text) {
    constexpr std::int64_t middle = std::int64_t{1} << 60;
    constexpr std::uint64_t firstDate = std::uint64_t{1} << 61;
    constexpr std::size_t mostDigits = 18;
    if (text.empty() || !(IsDigit(text.front()) || text.front() == '-')) return std::nullopt;
    std::string_view digits = text;
    const bool negative = Take(digits, '-');
    std::int64_t number = 0;
    std::size_t length = 0;
    for (; length < digits.size() && length < mostDigits && IsDigit(digits[length]); ++length)
        number = number * 10 + (digits[length] - '0');
    if (length && length == digits.size()) {
        // What begins with 0 is a code, not a number.
        if (digits.front() == '0' && (length > 1 || negative)) return std::nullopt;
        return static_cast<std::uint64_t>(middle + (negative ? -number : number));
    }
    const auto date = ReadDate(text);
    if (!date) return std::nullopt;
    return firstDate + static_cast<std::uint64_t>(middle + *date);
}

} // namespace korvex

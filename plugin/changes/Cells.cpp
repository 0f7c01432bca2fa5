#include "plugin/changes/Cells.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>
#include <vector>

namespace planfold {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kRisky = "=+-@\t\r";

bool Take(std::string_view& text, std::string_view beginning) {
    if (!text.starts_with(beginning)) return false;
    text.remove_prefix(beginning.size());
    return true;
}

// "1,00,000" by its separator: one to three digits, groups of two or three, and three at the end.
bool IsGroupedNumber(std::string_view digits, char separator) {
    std::size_t begin = 0;
    for (bool first = true;; first = false) {
        const std::size_t end = std::min(digits.find(separator, begin), digits.size());
        const std::size_t size = end - begin;
        const bool last = end == digits.size();
        if (last ? size != 3 || first : size > 3 || size < (first ? 1 : 2)) return false;
        if (last) return true;
        begin = end + 1;
    }
}

struct Parts {
    std::string whole, fraction;
};

// The whole and the fraction of an unsigned number without exponent.
std::optional<Parts> Divide(std::string_view text, bool decimalComma) {
    const auto count = [&](char separator) { return std::ranges::count(text, separator); };
    char point = '.', group = ',';
    const bool both = count('.') && count(',');
    if (decimalComma && both && text.rfind(',') > text.rfind('.')) std::swap(point, group);
    if (decimalComma && !both && count(',') == 1) std::swap(point, group);
    if (count(point) > 1) return std::nullopt;
    const std::size_t at = std::min(text.find(point), text.size());
    std::string_view whole = text.substr(0, at), fraction = text.substr(std::min(at + 1, text.size()));
    // 1,500 is one and a half to some programs.
    if (point == ',' && !both && fraction.size() == 3) return std::nullopt;
    if (whole.find(group) != whole.npos && !IsGroupedNumber(whole, group)) return std::nullopt;
    Parts parts{std::string(whole), std::string(fraction)};
    std::erase(parts.whole, group);
    if (parts.whole.empty() || !AllDigits(parts.whole) || !AllDigits(parts.fraction)) return std::nullopt;
    return parts;
}

constexpr int kMostExponent = 30;

void Shift(Parts& parts, int exponent) {
    std::string& from = exponent > 0 ? parts.fraction : parts.whole;
    const auto places = static_cast<std::size_t>(std::abs(exponent));
    if (from.size() < places) from.insert(exponent > 0 ? from.size() : 0, places - from.size(), '0');
    if (exponent > 0) {
        parts.whole += from.substr(0, places);
        from.erase(0, places);
    } else {
        parts.fraction.insert(0, from.substr(from.size() - places));
        from.erase(from.size() - places);
    }
}

std::optional<int> TakeExponent(std::string_view& text) {
    const std::size_t at = text.find_first_of("eE");
    if (at == text.npos) return 0;
    std::string_view digits = text.substr(at + 1);
    text = text.substr(0, at);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const auto exponent = base::ReadNumber<int>(digits);
    if (!exponent || *exponent > kMostExponent || *exponent < -kMostExponent) return std::nullopt;
    return exponent;
}

struct Moment {
    int year, month, day;
    std::string_view time; // "14:02" or "14:02:31"; empty without one
};

std::optional<int> Figure(std::string_view text, std::size_t most) {
    if (text.empty() || text.size() > most || !AllDigits(text)) return std::nullopt;
    return static_cast<int>(LeadingInteger(text));
}

std::optional<int> Month(std::string_view text) {
    if (text.size() == 3 && !AllDigits(text.substr(0, 1))) {
        for (int month = 1; month <= 12; ++month)
            if (EqualsIgnoringCase(MonthName(month), text)) return month;
        return std::nullopt;
    }
    return Figure(text, 2);
}

// Day, month and year in the order in which they stand, or the month first.
std::optional<Moment> ReadMoment(std::string_view text, bool monthFirst) {
    const std::size_t end = std::min(text.find_first_of(" T", 4 < text.size() ? 4 : 0), text.size());
    const std::string_view date = text.substr(0, end);
    const std::size_t one = date.find_first_of("-/.");
    const std::size_t two = one == date.npos ? one : date.find(date[one], one + 1);
    if (two == date.npos) return std::nullopt;
    std::string_view first = date.substr(0, one), second = date.substr(one + 1, two - one - 1),
                     third = date.substr(two + 1);
    if (first.size() == 4)
        std::swap(first, third);
    else if (monthFirst)
        std::swap(first, second);
    const auto day = Figure(first, 2), month = Month(second), year = Figure(third, 4);
    if (!day || !month || !year || (third.size() != 4 && third.size() != 2)) return std::nullopt;
    const Moment moment{third.size() == 2 ? 2000 + *year : *year, *month, *day,
                        Trimmed(text.substr(std::min(end + 1, text.size())), kBlanks)};
    const bool isTime = std::ranges::all_of(
        moment.time, [](char character) { return character == ':' || (character >= '0' && character <= '9'); });
    const std::chrono::year_month_day day3{std::chrono::year(moment.year),
                                           std::chrono::month(static_cast<unsigned>(moment.month)),
                                           std::chrono::day(static_cast<unsigned>(moment.day))};
    if (!day3.ok() || !isTime) return std::nullopt;
    return moment;
}

// A program may show less of a time than there is.
bool AreSame(const Moment& shown, const Moment& whole) {
    return shown.year == whole.year && shown.month == whole.month && shown.day == whole.day
           && whole.time.starts_with(shown.time) && shown.time.empty() == whole.time.empty();
}

} // namespace

std::optional<std::string> PlainNumber(std::string_view cell, bool decimalComma) {
    std::string_view text = Trimmed(cell, kBlanks);
    const bool negative = Take(text, "-");
    const auto exponent = TakeExponent(text);
    if (!exponent) return std::nullopt;
    auto parts = Divide(text, decimalComma);
    if (!parts) return std::nullopt;
    if (*exponent) Shift(*parts, *exponent);
    parts->whole.erase(0, std::min(parts->whole.find_first_not_of('0'), parts->whole.size()));
    parts->fraction.erase(parts->fraction.find_last_not_of('0') + 1);
    const bool isZero = parts->whole.empty() && parts->fraction.empty();
    std::string plain = negative && !isZero ? "-" : "";
    plain += parts->whole.empty() ? "0" : parts->whole;
    return parts->fraction.empty() ? plain : plain + '.' + parts->fraction;
}

std::optional<std::string> ReadRupees(std::string_view cell, bool decimalComma) {
    std::string_view text = Restored(cell);
    if (Take(text, "Rs.") || Take(text, "Rs") || Take(text, "\xE2\x82\xB9")) text = Trimmed(text, kBlanks);
    auto plain = PlainNumber(text, decimalComma);
    if (!plain || text.find_first_of("eE") != text.npos) return std::nullopt;
    // 1.500 may be one and a half thousand.
    const std::size_t last = text.find_last_of(".,");
    if (last != text.npos && text[last] == '.' && text.size() - last > 3) return std::nullopt;
    const std::size_t point = plain->find('.');
    const std::size_t decimals = point == plain->npos ? 0 : plain->size() - point - 1;
    if (decimals > 2) return std::nullopt;
    if (!decimals) *plain += '.';
    return plain->append(2 - decimals, '0');
}

std::optional<std::string> ReadCount(std::string_view cell, bool decimalComma) {
    const std::string_view text = Restored(cell);
    auto plain = PlainNumber(text, decimalComma);
    if (!plain || plain->find_first_of("-.") != plain->npos || text.find_first_of("eE") != text.npos)
        return std::nullopt;
    return plain;
}

std::string_view Restored(std::string_view cell) {
    std::string_view text = cell.substr(std::min(cell.find_first_not_of(' '), cell.size()));
    if (text.size() > 1 && text.front() == '\'' && kRisky.find(text[1]) != kRisky.npos) text.remove_prefix(1);
    return Trimmed(text, kBlanks);
}

std::optional<std::string> DateInFigures(std::string_view cell) {
    const auto moment = ReadMoment(Trimmed(cell, kBlanks), false);
    if (!moment) return std::nullopt;
    const std::string date = Format("%04d-%02d-%02d", moment->year, moment->month, moment->day);
    return moment->time.empty() ? date : date + ' ' + std::string(moment->time);
}

bool MeansTheSame(std::string_view cell, std::string_view ofBook, bool decimalComma) {
    const std::string_view there = Trimmed(ofBook, kBlanks);
    if (Trimmed(cell, kBlanks) == there || Restored(cell) == there) return true;
    if (cell.empty() || there.empty()) return false;
    const bool isCode = there.size() > 1 && there.front() == '0' && there[1] != '.';
    if (const auto number = PlainNumber(there, false); number && !isCode)
        return PlainNumber(cell, decimalComma) == number;
    const auto whole = ReadMoment(there, false);
    if (!whole) return false;
    for (const bool monthFirst : {false, true})
        if (const auto shown = ReadMoment(Trimmed(cell, kBlanks), monthFirst); shown && AreSame(*shown, *whole))
            return true;
    return false;
}

} // namespace planfold

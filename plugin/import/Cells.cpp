#include "plugin/import/Cells.h"

#include "base/Text.h"
#include "plugin/base/Dates.h"
#include "plugin/base/Frequencies.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/import/XlsxTable.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

namespace planfold {

namespace {

constexpr std::string_view kSpaces = " \t\n\v\f\r";

constexpr const char* kFaultTexts[] = {
    "",
    "there is nothing",
    "is not a number",
    "may be meant in two ways, or is grouped wrongly",
    "is not a whole number of paise",
    "may be rupees or paise; the mapping must say which",
    "was shortened by a spreadsheet; the digits are lost",
    "has lost its leading zeros",
    "is not a date",
    "may be two dates; the mapping must say the order of day and month",
    "may be a spreadsheet's day number; the mapping must say since when",
    "is not known",
    "has a comma, a line end, or more than 127 characters",
    "is given beside an amount; the invest type must say which counts",
    "is not a scrip that the terminal knows",
    "is another than the symbol's",
    "the row cannot be read",
    "",
};
static_assert(std::size(kFaultTexts) == static_cast<std::size_t>(ImportFault::count));

constexpr std::size_t kLongestText = 127;
constexpr std::size_t kMostDigits = 15;
constexpr std::string_view kHardSpaces[] = {"\xC2\xA0", "\xE2\x80\xAF"};
constexpr std::string_view kCurrencies[] = {"Rs.", "Rs", "INR", "\xE2\x82\xB9"};

struct WordRow {
    BasketField field;
    std::string_view word;
    std::string_view others; // as HeadingKey makes them, between semicolons
};
constexpr WordRow kWords[] = {
    {BasketField::exchange, "nse_cm", ";nse;nsecm;nseeq;nsecash;"},
    {BasketField::exchange, "bse_cm", ";bse;bsecm;bseeq;bsecash;"},
    {BasketField::frequency, kFrequencies[0].word, ";daily;d;day;everyday;"},
    {BasketField::frequency, kFrequencies[1].word, ";weekly;w;week;everyweek;"},
    {BasketField::frequency, kFrequencies[2].word, ";monthly;m;month;everymonth;"},
    {BasketField::frequency, kFrequencies[3].word, ";yearly;y;year;annual;annually;everyyear;"},
    {BasketField::orderType, "MKT", ";mkt;market;"},
    {BasketField::side, "B", ";b;buy;sip;purchase;"},
    {BasketField::side, "S", ";s;sell;swp;redeem;redemption;"},
    {BasketField::investType, "value", ";value;amount;amt;byvalue;byamount;rs;rupees;"},
    {BasketField::investType, "qty", ";qty;quantity;byquantity;byqty;units;shares;"},
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "1E+05", "1,5E+11".
bool IsShortened(std::string_view text) {
    if (text.empty() || !IsDigit(text.front())) return false;
    const std::size_t e = text.find_first_of("eE");
    if (e == text.npos) return false;
    const std::string_view power = text.substr(e + 1);
    return text.substr(0, e).find_first_not_of("0123456789.,") == text.npos && power.size() > 1
           && (power.front() == '+' || power.front() == '-') && AllDigits(power.substr(1));
}

struct Decimal {
    std::string whole, fraction;
    bool isCurrency = false;
    bool HasParts() const { return fraction.find_first_not_of('0') != fraction.npos; }
};

// Groups of three from the right, or, as in India, of two left of the last.
bool IsGrouped(std::string_view text, char separator) {
    std::vector<std::size_t> sizes{0};
    for (const char c : text) {
        if (c == separator)
            sizes.push_back(0);
        else
            ++sizes.back();
    }
    if (sizes.size() < 2 || sizes.back() != 3 || sizes.front() < 1) return false;
    const std::size_t middle = sizes.size() > 2 ? sizes[1] : 3;
    if ((middle != 2 && middle != 3) || sizes.front() > middle) return false;
    return std::all_of(sizes.begin() + 1, sizes.end() - 1, [&](std::size_t size) { return size == middle; });
}

// One separator, once: where it stands tells whether it groups. None when it cannot.
std::optional<bool> IsDecimalPoint(std::string_view text, std::size_t at) {
    const std::size_t before = at, behind = text.size() - at - 1;
    if (behind == 1 || behind == 2) return true;
    const bool isPoint = text[at] == '.';
    if (behind != 3) return isPoint ? std::optional(true) : std::nullopt;
    const bool mayGroup = before >= 1 && before <= 3 && text.front() != '0';
    if (!isPoint) return mayGroup ? std::optional(false) : std::nullopt;
    return mayGroup ? std::nullopt : std::optional(true);
}

ImportFault SplitNumber(std::string_view text, Decimal& number) {
    const std::size_t last = text.find_last_of(".,");
    const char separator = last == text.npos ? '\0' : text[last];
    const auto count = [&](char c) { return std::ranges::count(text, c); };
    bool hasPoint = false;
    if (separator) {
        const char other = separator == '.' ? ',' : '.';
        hasPoint = count(separator) == 1;
        if (hasPoint && count(other) == 0 && count(' ') == 0) {
            const auto isPoint = IsDecimalPoint(text, last);
            if (!isPoint) return ImportFault::grouping;
            hasPoint = *isPoint;
        }
    }
    const std::string_view whole = hasPoint ? text.substr(0, last) : text;
    if (hasPoint) number.fraction = text.substr(last + 1);
    if (const std::size_t group = whole.find_first_of(".,' "); group != whole.npos)
        if (!IsGrouped(whole, whole[group])) return ImportFault::grouping;
    for (const char c : whole)
        if (IsDigit(c)) number.whole.push_back(c);
    return AllDigits(number.fraction) ? ImportFault::none : ImportFault::noNumber;
}

ImportFault ReadDecimal(const TableCell& cell, Decimal& number) {
    const std::string_view plain = PlainText(cell.text);
    if (plain.empty()) return ImportFault::missing;
    // The usual case.
    if (plain.size() <= kMostDigits && plain.front() != '0' && AllDigits(plain)) {
        number.whole = plain;
        return ImportFault::none;
    }
    std::string text(plain);
    if (IsShortened(text)) return ImportFault::shortened;
    for (const std::string_view space : kHardSpaces)
        for (std::size_t at; (at = text.find(space)) != text.npos;)
            text.replace(at, space.size(), " ");
    for (const std::string_view currency : kCurrencies)
        if (StartsWithIgnoringCase(text, currency)) {
            text = Trimmed(std::string_view(text).substr(currency.size()), kSpaces);
            number.isCurrency = true;
            break;
        }
    if (text.ends_with("/-")) {
        text = Trimmed(std::string_view(text).substr(0, text.size() - 2), kSpaces);
        number.isCurrency = true;
    }
    if (text.empty() || text.find_first_not_of("0123456789., '") != text.npos || !IsDigit(text.front()))
        return ImportFault::noNumber;
    if (cell.kind == CellKind::text) {
        if (const ImportFault fault = SplitNumber(text, number); fault != ImportFault::none) return fault;
    } else {
        const std::size_t point = std::min(text.find('.'), text.size());
        number.whole = text.substr(0, point);
        number.fraction = text.substr(std::min(point + 1, text.size()));
        if (!AllDigits(number.whole + number.fraction)) return ImportFault::noNumber;
    }
    number.whole.erase(0, std::min(number.whole.find_first_not_of('0'), number.whole.size()));
    return number.whole.size() > kMostDigits ? ImportFault::noNumber : ImportFault::none;
}

bool IsDay(int year, int month, int day) {
    using namespace std::chrono;
    return year >= 1971 && year <= 9998
           && year_month_day(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                             std::chrono::day(static_cast<unsigned>(day)))
                  .ok();
}

ImportFault WriteDay(int year, int month, int day, std::string& date) {
    if (year >= 0 && year < 100) year += 2000;
    if (!IsDay(year, month, day)) return ImportFault::noDate;
    date = FormatPickerDate({year, month, day});
    return ImportFault::none;
}

int MonthOfName(std::string_view name) {
    constexpr std::string_view kMonths[] = {"january",   "february", "march",    "april",
                                            "may",       "june",     "july",     "august",
                                            "september", "october",  "november", "december"};
    for (int i = 0; i < 12; ++i)
        if (EqualsIgnoringCase(name, kMonths[i]) || EqualsIgnoringCase(name, kMonths[i].substr(0, 3)))
            return i + 1;
    return 0;
}

// Runs of digits or letters. False when there are not three, or what is behind them is no time of day.
bool SplitDay(std::string_view text, std::array<std::string_view, 3>& parts) {
    const auto isLetter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    std::size_t at = 0;
    for (std::string_view& part : parts) {
        at = std::min(text.find_first_not_of("/-. ,", at), text.size());
        const std::size_t begin = at;
        const bool isWord = at < text.size() && isLetter(text[at]);
        while (at < text.size() && (isWord ? isLetter(text[at]) : IsDigit(text[at])))
            ++at;
        part = text.substr(begin, at - begin);
        if (part.empty() || part.size() > 9) return false;
    }
    const std::string_view rest = text.substr(at);
    return rest.empty()
           || ((rest.front() == ' ' || rest.front() == 'T')
               && rest.find_first_not_of("0123456789:. TAPMZapm") == rest.npos);
}

ImportFault ReadNumberDay(std::string_view text, DatePattern pattern, std::string& date) {
    if (pattern == DatePattern::since1900 || pattern == DatePattern::since1904) {
        const std::string day = DayOfSerial(text, pattern == DatePattern::since1904);
        return day.empty() ? ImportFault::noDate : ReadDay({day, CellKind::date}, DatePattern::yearFirst, date);
    }
    if (text.find('.') != text.npos || text.size() != 8) return ImportFault::undecidedSerial;
    const auto number = [&](std::size_t at, std::size_t size) {
        return static_cast<int>(LeadingInteger(text.substr(at, size)));
    };
    if (pattern == DatePattern::dayFirst) return WriteDay(number(4, 4), number(2, 2), number(0, 2), date);
    if (pattern == DatePattern::monthFirst) return WriteDay(number(4, 4), number(0, 2), number(2, 2), date);
    if (pattern == DatePattern::undecided) return ImportFault::undecidedDate;
    return WriteDay(number(0, 4), number(4, 2), number(6, 2), date);
}

// Three numbers.
ImportFault ReadNumbersDay(const std::array<std::string_view, 3>& parts, DatePattern pattern,
                           std::string& date) {
    int n[3];
    for (std::size_t i = 0; i < 3; ++i)
        n[i] = static_cast<int>(LeadingInteger(parts[i]));
    if (parts[0].size() == 4 || pattern == DatePattern::yearFirst) return WriteDay(n[0], n[1], n[2], date);
    if (pattern == DatePattern::dayFirst) return WriteDay(n[2], n[1], n[0], date);
    if (pattern == DatePattern::monthFirst) return WriteDay(n[2], n[0], n[1], date);
    if (parts[2].size() != 4) return ImportFault::undecidedDate;
    if (n[0] > 12 || n[0] == n[1]) return WriteDay(n[2], n[1], n[0], date);
    return n[1] > 12 ? WriteDay(n[2], n[0], n[1], date) : ImportFault::undecidedDate;
}

} // namespace

const char* TextOf(ImportFault fault) {
    return kFaultTexts[static_cast<std::size_t>(fault)];
}

std::string_view PlainText(std::string_view text) {
    text = Trimmed(text, kSpaces);
    if (text.size() > 3 && text.starts_with("=\"") && text.ends_with('"'))
        return Trimmed(text.substr(2, text.size() - 3), kSpaces);
    if (text.size() > 1 && text.front() == '\'' && std::string_view("=+-@").find(text[1]) != text.npos)
        text.remove_prefix(1);
    return text;
}

ImportFault ReadMoney(const TableCell& cell, AmountUnit unit, std::string& paise) {
    Decimal number;
    if (const ImportFault fault = ReadDecimal(cell, number); fault != ImportFault::none) return fault;
    // Nobody writes parts of a paisa.
    if (unit == AmountUnit::undecided && (number.isCurrency || !number.fraction.empty()))
        unit = AmountUnit::rupees;
    if (unit == AmountUnit::undecided && !number.whole.empty()) return ImportFault::undecidedUnit;
    if (unit == AmountUnit::rupees) {
        number.fraction.resize(std::max<std::size_t>(number.fraction.size(), 2), '0');
        number.whole += number.fraction.substr(0, 2);
        number.fraction.erase(0, 2);
    }
    if (number.HasParts()) return ImportFault::partOfPaisa;
    paise = number.whole.substr(std::min(number.whole.find_first_not_of('0'), number.whole.size()));
    if (paise.empty()) paise = "0";
    return ImportFault::none;
}

ImportFault ReadWholeNumber(const TableCell& cell, std::string& text) {
    Decimal number;
    if (const ImportFault fault = ReadDecimal(cell, number); fault != ImportFault::none) return fault;
    if (number.HasParts() || number.isCurrency) return ImportFault::noNumber;
    text = number.whole.empty() ? "0" : number.whole;
    return ImportFault::none;
}

ImportFault ReadDay(const TableCell& cell, DatePattern pattern, std::string& date) {
    const std::string_view text = PlainText(cell.text);
    if (text.empty()) return ImportFault::missing;
    if (IsShortened(text)) return ImportFault::shortened;
    if (text.find_first_not_of("0123456789.") == text.npos && std::ranges::count(text, '.') < 2)
        return ReadNumberDay(text, pattern, date);
    std::array<std::string_view, 3> parts;
    if (!SplitDay(text, parts)) return ImportFault::noDate;
    int words = 0;
    for (const std::string_view part : parts)
        words += !IsDigit(part.front());
    if (words == 0)
        return ReadNumbersDay(parts, cell.kind == CellKind::date ? DatePattern::yearFirst : pattern, date);
    const int at = IsDigit(parts[0].front()) ? 1 : 0;
    const int month = MonthOfName(parts[static_cast<std::size_t>(at)]);
    if (words > 1 || month == 0) return ImportFault::noDate;
    const auto first = static_cast<int>(LeadingInteger(parts[static_cast<std::size_t>(1 - at)]));
    const auto last = static_cast<int>(LeadingInteger(parts[2]));
    return parts[static_cast<std::size_t>(1 - at)].size() == 4 ? WriteDay(first, month, last, date)
                                                               : WriteDay(last, month, first, date);
}

bool HasWords(BasketField field) {
    constexpr auto mask = [] {
        std::uint32_t fields = 0;
        for (const WordRow& row : kWords)
            fields |= 1u << static_cast<unsigned>(row.field);
        return fields;
    }();
    return (mask >> static_cast<unsigned>(field) & 1) != 0;
}

ImportFault ReadWord(BasketField field, std::string_view text, std::string& word) {
    const std::string key = ';' + HeadingKey(text) + ';';
    for (const WordRow& row : kWords) {
        if (row.field != field || row.others.find(key) == row.others.npos) continue;
        word = row.word;
        return ImportFault::none;
    }
    if (field != BasketField::exchange) return ImportFault::unknownWord;
    word = text;
    return ImportFault::none;
}

ImportFault ReadCode(const TableCell& cell, std::string& code) {
    const std::string_view text = PlainText(cell.text);
    if (text.empty()) return ImportFault::missing;
    if (IsShortened(text)) return ImportFault::shortened;
    // Of more digits a workbook keeps zeros alone.
    if (cell.kind == CellKind::number && AllDigits(text) && text.size() > kMostDigits)
        return ImportFault::shortened;
    const auto isBad = [](char c) { return c == ',' || (c >= 0 && c < ' ') || c == '\x7F'; };
    if (text.size() > kLongestText || std::ranges::any_of(text, isBad)) return ImportFault::badText;
    code = text;
    return ImportFault::none;
}

} // namespace planfold

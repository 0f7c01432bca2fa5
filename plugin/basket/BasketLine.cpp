#include "plugin/basket/BasketLine.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <utility>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace planfold {

namespace {

using Verdict = std::optional<BasketRefusal>;

constexpr std::size_t kFewestCommas = 19;
constexpr std::size_t kMostCommas = 20;
constexpr std::size_t kLongestLine = 1022; // without its end
constexpr std::size_t kLongestField = 127;

std::string InLine(std::string reason, int lineNumber) {
    return std::move(reason) + Format(" In Line Number %d", lineNumber);
}

// A file of ever new names must not fill the memory.
constexpr std::size_t kMostRead = 100'000;

template <class Map>
Map& RoomFor(Map& map) {
    if (map.size() >= kMostRead) map.clear();
    return map;
}

// What says so already stays where it is: the texts of a row that lie together are copied together.
void Put(std::string_view& column, std::string_view text) {
    if (column != text) column = text;
}

struct WordRule {
    BasketField field;
    std::string_view words[4]; // one of them
    const char* reason;
};
constexpr WordRule kWordRules[] = {
    {BasketField::side, {"B", "S", "B", "B"}, kInvalidAction},
    {BasketField::investType, {"value", "qty", "qty", "qty"}, kInvalidInvestType},
    {BasketField::frequency,
     {kFrequencies[0].word, kFrequencies[1].word, kFrequencies[2].word, kFrequencies[3].word},
     kInvalidFrequency},
    {BasketField::orderType, {"MKT", "MKT", "MKT", "MKT"}, kInvalidOrderType},
};

constexpr std::size_t kStep = 64;

// A line with spaces behind it, so that it is looked through in whole steps.
class PaddedLine {
public:
    explicit PaddedLine(std::string_view line) : m_steps((line.size() + kStep - 1) / kStep) {
        char* const end = std::ranges::copy(line, m_text.begin()).out;
        std::fill_n(end, kStep, ' ');
    }
    std::size_t Size() const { return m_steps * kStep; }
    // Whether one of its characters cannot be printed.
    bool HasControl() const {
        unsigned char least = ' ';
        for (std::size_t i = 0; i < Size(); ++i)
            least = std::min(least, static_cast<unsigned char>(m_text[i]));
        return least < ' ';
    }
    // Bit i is that of character begin + i. A branch for each would be a guess: where commas stand, none
    // foresees.
    std::uint64_t CommasFrom(std::size_t begin) const {
        std::uint64_t bits = 0;
#ifdef __SSE2__
        constexpr std::size_t step = sizeof(__m128i);
        for (std::size_t i = 0; i < kStep; i += step) {
            const auto* const text = reinterpret_cast<const __m128i*>(&m_text[begin + i]);
            const __m128i isComma = _mm_cmpeq_epi8(_mm_loadu_si128(text), _mm_set1_epi8(','));
            bits |= static_cast<std::uint64_t>(_mm_movemask_epi8(isComma)) << i;
        }
#else
        for (std::size_t i = 0; i < kStep; ++i)
            bits |= static_cast<std::uint64_t>(m_text[begin + i] == ',') << i;
#endif
        return bits;
    }

private:
    std::array<char, kLongestLine + kStep> m_text;
    std::size_t m_steps;
};

// What a line end cuts off leaves the columns behind it empty.
void CutColumns(BasketTexts& columns, std::string_view line) {
    const char* const end = line.data() + line.size();
    for (std::string_view& column : columns)
        column = {std::min(column.data(), end), std::min(column.data() + column.size(), end)};
}

} // namespace

bool SplitBasketLine(std::string_view line, BasketTexts& columns) {
    if (line.size() > kLongestLine || line.empty() || line.front() == ',') return false;
    const PaddedLine padded(line);
    const bool hasControl = padded.HasControl();
    if (const std::size_t zero = hasControl ? line.find('\0') : line.npos; zero != line.npos)
        return SplitBasketLine(line.substr(0, zero), columns);
    std::size_t count = 0, at = 0;
    for (std::size_t begin = 0; begin < padded.Size(); begin += kStep) {
        std::uint64_t commas = padded.CommasFrom(begin);
        if (count + static_cast<std::size_t>(std::popcount(commas)) > kMostCommas) return false;
        for (; commas; commas &= commas - 1) {
            const std::size_t end = begin + static_cast<std::size_t>(std::countr_zero(commas));
            columns[static_cast<BasketField>(count++)] = {line.data() + at, end - at};
            at = end + 1;
        }
    }
    if (count < kFewestCommas) return false;
    columns[BasketField::userText] = {}; // behind the last column something may stand
    if (hasControl) CutColumns(columns, line.substr(0, std::min(line.find('\n'), line.find('\r'))));
    const auto isTooLong = [](std::string_view column) { return column.size() > kLongestField; };
    return line.size() <= kLongestField || std::ranges::none_of(columns, isTooLong);
}

Verdict BasketCheck::Validate(BasketTexts& columns, int lineNumber) {
    Scrip& scrip = LookUp(columns);
    if (columns[BasketField::tradingSymbol] != scrip.tradingSymbol || scrip.token.empty()
        || columns[BasketField::token] != scrip.token)
        return BasketRefusal{kInvalidToken};
    if (!ReadStartDate(columns)) return BasketRefusal{"Invalid Date"};
    if (Verdict refusal = CheckPeriod(columns)) return refusal;
    for (const WordRule& rule : kWordRules)
        if (std::ranges::find(rule.words, columns[rule.field]) == std::end(rule.words))
            return BasketRefusal{rule.reason};
    if (std::ranges::find(m_rules.products, columns[BasketField::product]) == m_rules.products.end())
        return BasketRefusal{kInvalidProduct};

    Put(columns[BasketField::customerFirm], "C");
    Put(columns[BasketField::validity], "DAY");
    Put(columns[BasketField::sideWord], columns[BasketField::side] == "B" ? "BUY" : "SELL");
    const bool byQuantity = columns[BasketField::investType] == "qty";
    if (Verdict refusal =
            byQuantity ? CheckQuantity(columns, lineNumber) : CheckAmount(columns, scrip, lineNumber))
        return refusal;
    columns[BasketField::userText] = "NA";
    return std::nullopt;
}

// A basket names few scrips many times; the host is asked once for each.
BasketCheck::Scrip& BasketCheck::LookUp(const BasketTexts& columns) {
    const std::string_view exchange = columns[BasketField::exchange];
    const std::string_view tradingSymbol = columns[BasketField::tradingSymbol];
    m_key.assign(tradingSymbol).append(1, ',').append(exchange);
    const auto [place, isNew] = RoomFor(m_known).try_emplace(m_key);
    Scrip& scrip = place->second;
    if (isNew && (scrip.details = m_scrips.Details(exchange, tradingSymbol))) {
        scrip.token = TextOf(scrip.details->token);
        scrip.tradingSymbol = TextOf(scrip.details->tradingSymbol);
    }
    return scrip.details ? scrip : LookUpByName(exchange, columns);
}

// Without details the scrip is what its series and symbol name, in rupees and paise.
BasketCheck::Scrip& BasketCheck::LookUpByName(std::string_view exchange, const BasketTexts& columns) {
    const std::string_view series = columns[BasketField::series], symbol = columns[BasketField::symbol];
    m_key.append(1, ',').append(series).append(1, ',').append(symbol);
    const auto [place, isNew] = RoomFor(m_known).try_emplace(m_key);
    Scrip& scrip = place->second;
    if (!isNew) return scrip;
    ScripNames names = m_scrips.Names(exchange, series, symbol);
    scrip.tradingSymbol = std::move(names.tradingSymbol);
    scrip.token = std::move(names.token);
    return scrip;
}

// Day, month and year in the form that a row keeps; today is already too late.
bool BasketCheck::ReadStartDate(BasketTexts& columns) {
    m_key = columns[BasketField::startDateText];
    const auto [place, isNew] = RoomFor(m_dates).try_emplace(m_key);
    Date& date = place->second;
    if (isNew) {
        date.text = place->first;
        std::ranges::replace(date.text, '-', '/');
        const std::size_t year = date.text.rfind('/');
        // "27" is 2027; nothing behind the last separator is no year.
        const std::size_t digits = date.text.size() - year - 1;
        if (year != date.text.npos && (digits == 1 || digits == 2)) date.text.insert(year + 1, "20");
        // What a row keeps must fit a file's field.
        if (date.text.size() <= kLongestField) date.seconds = ParseDate(date.text);
        date.number = std::to_string(date.seconds);
    }
    Put(columns[BasketField::startDateText], date.text);
    Put(columns[BasketField::startDate], date.number);
    return date.seconds >= m_rules.now;
}

Verdict BasketCheck::CheckPeriod(const BasketTexts& columns) const {
    const std::string_view text = columns[BasketField::totalPeriod];
    const std::string_view frequency = columns[BasketField::frequency];
    if (text.empty() || text == "0" || !AllDigits(text)) return BasketRefusal{kInvalidPeriod};
    const std::int64_t period = LeadingInteger(text);
    if (!m_rules.serverPeriods) {
        if (period < 1 || period > 60) return BasketRefusal{"Period Should be Between 1 and 60"};
        return std::nullopt;
    }
    const auto isListed = [&](const std::string& entry) { return EqualsIgnoringCase(entry, frequency); };
    if (std::ranges::none_of(m_rules.frequencies, isListed))
        return BasketRefusal{{}, Format("%s Frequency not set", std::string(frequency).c_str())};
    const Frequency* known = FindFrequency(frequency);
    const double minimum = known ? m_rules.minimums[IndexOf(*known)] : 0.0;
    if (static_cast<double>(period) < minimum)
        return BasketRefusal{{}, Format("Minimum SIP value is %.0lf", minimum)};
    return std::nullopt;
}

Verdict BasketCheck::CheckQuantity(const BasketTexts& columns, int lineNumber) const {
    const std::string_view text = columns[BasketField::quantity];
    if (text.empty() || text == "." || text == "0") return BasketRefusal{"InValid Quantity"};
    if (LeadingInteger(text) == 0) return BasketRefusal{"Quantity cannot be zero"};
    if (!AllDigits(text)) return BasketRefusal{"InValid Quantity"};
    if (LeadingReal(text) <= INT_MAX) return std::nullopt;
    const std::string reason = Format("Quantity should not be more than integer max value(%d)", INT_MAX);
    return BasketRefusal{InLine(reason, lineNumber), {}, true};
}

Verdict BasketCheck::CheckAmount(BasketTexts& columns, Scrip& scrip, int lineNumber) {
    const std::string_view text = columns[BasketField::amount];
    if (text.empty()) return BasketRefusal{"InValid Amount"};
    const bool isWhole = AllDigits(text) && text.front() != '0' && text.size() < 16;
    double paise = isWhole ? static_cast<double>(LeadingInteger(text)) : LeadingReal(text);
    if (paise == 0.0) return BasketRefusal{"Enter valid Amount"};
    if (!isWhole) {
        m_amount = Format("%.lf", paise);
        columns[BasketField::amount] = m_amount;
        if (!AllDigits(m_amount)) return BasketRefusal{"InValid Amount"};
        paise = LeadingReal(m_amount);
    }
    // What is less than an amount in range is in range as well.
    if (paise <= scrip.largestInRange) return std::nullopt;
    const ScripDetails* details = scrip.details ? &*scrip.details : nullptr;
    const PriceScale scale = ScaleOf(details);
    std::string message;
    if (!CheckPriceRange(Format("%.*lf", scale.decimals, paise / scale.multiplier), message, details, true))
        return BasketRefusal{InLine("Amount" + message, lineNumber), {}, true};
    scrip.largestInRange = paise;
    return std::nullopt;
}

} // namespace planfold

#include "plugin/basket/BasketLine.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <utility>

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
constexpr std::size_t kMostKept = 100'000;

template <class Map>
Map& RoomFor(Map& map) {
    if (map.size() >= kMostKept) map.clear();
    return map;
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

using Commas = std::array<std::uint16_t, kMostCommas>;

constexpr std::size_t kStep = 64;

// Bit i tells whether character i is a comma, without a branch for each: where commas stand cannot be foreseen.
std::uint64_t CommaBits(std::string_view text) {
    std::array<char, kStep> isComma{};
    text.copy(isComma.data(), kStep);
    for (char& c : isComma)
        c = static_cast<char>(c == ',');
    std::uint64_t bits = 0;
    for (std::size_t at = 0; at < kStep; at += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, &isComma[at], 8);
        // Moves the lowest bits of the eight bytes together into the highest byte.
        bits |= eight * 0x0102'0408'1020'4080 >> 56 << at;
    }
    return bits;
}

// False unless there are as many as a line has.
bool FindCommas(std::string_view line, Commas& commas) {
    std::size_t count = 0;
    for (std::size_t base = 0; base < line.size(); base += kStep) {
        std::uint64_t bits = CommaBits(line.substr(base));
        if (count + static_cast<std::size_t>(std::popcount(bits)) > kMostCommas) return false;
        for (; bits; bits &= bits - 1)
            commas[count++] =
                static_cast<std::uint16_t>(base + static_cast<std::size_t>(std::countr_zero(bits)));
    }
    return count >= kFewestCommas;
}

} // namespace

bool SplitBasketLine(std::string_view line, BasketTexts& columns) {
    if (line.size() > kLongestLine) return false;
    line = line.substr(0, line.find('\0'));
    if (line.empty() || line.front() == ',') return false;
    Commas commas;
    if (!FindCommas(line, commas)) return false;
    // What a line end cuts off leaves the columns behind it empty.
    line = line.substr(0, std::min(line.find('\n'), line.find('\r')));
    std::size_t at = 0;
    std::size_t longest = 0;
    for (std::size_t i = 0; i < std::size(kBasketColumns); ++i) {
        const std::size_t end = std::min<std::size_t>(commas[i], line.size());
        columns[kBasketColumns[i]] = {line.data() + at, end - at};
        longest = std::max(longest, end - at);
        at = std::min(end + 1, line.size());
    }
    columns[BasketField::userText] = {};
    return longest <= kLongestField;
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

    columns[BasketField::customerFirm] = "C";
    columns[BasketField::validity] = "DAY";
    columns[BasketField::sideWord] = columns[BasketField::side] == "B" ? "BUY" : "SELL";
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
    columns[BasketField::startDateText] = date.text;
    columns[BasketField::startDate] = date.number;
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

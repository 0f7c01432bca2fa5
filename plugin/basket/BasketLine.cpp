#include "plugin/basket/BasketLine.h"

#include "plugin/messaging/Dates.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Session.h"
#include "plugin/messaging/Text.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace planfold {

namespace {

using Verdict = std::optional<BasketRefusal>;

constexpr std::ptrdiff_t kFewestCommas = 19;
constexpr std::ptrdiff_t kMostCommas = 20;
constexpr std::size_t kLongestLine = 1022; // without its end
constexpr std::size_t kLongestField = 127;
constexpr double kDefaultDivisor = 100.0;
constexpr int kDefaultDecimals = 2;

bool AllDigits(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

// A combo box finds its entries so.
bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

std::string InLine(std::string reason, int lineNumber) {
    return reason + Format(" In Line Number %d", lineNumber);
}

struct WordRule {
    BasketField field;
    std::string_view words[4]; // one of them
    const char* reason;
};
constexpr WordRule kWordRules[] = {
    {BasketField::action, {"B", "S", "B", "B"}, "InValid Action Type."},
    {BasketField::investType, {"value", "qty", "qty", "qty"}, "InValid Invest Type."},
    {BasketField::frequency, {"daily", "weekly", "monthly", "yearly"}, "InValid Frequency."},
    {BasketField::orderType, {"MKT", "MKT", "MKT", "MKT"}, "InValid Order Type"},
};

} // namespace

bool SplitBasketLine(std::string_view line, BasketTexts& columns) {
    if (line.size() > kLongestLine) return false;
    line = line.substr(0, line.find('\0'));
    if (line.empty() || line.front() == ',') return false;
    const std::ptrdiff_t commas = std::ranges::count(line, ',');
    if (commas < kFewestCommas || commas > kMostCommas) return false;
    columns = {};
    std::size_t at = 0;
    for (const BasketField field : kBasketColumns) {
        const std::size_t end = std::min(line.find_first_of(",\n\r", at), line.size());
        columns[field] = line.substr(at, end - at);
        if (end - at > kLongestField) return false;
        // What a line end cut off leaves the columns behind it empty.
        if (end == line.size() || line[end] != ',') break;
        at = end + 1;
    }
    return true;
}

Verdict BasketCheck::Validate(BasketTexts& columns, int lineNumber) {
    const Scrip& scrip = LookUp(columns);
    if (columns[BasketField::tradingSymbol] != scrip.tradingSymbol || scrip.token.empty()
        || columns[BasketField::token] != scrip.token)
        return BasketRefusal{"InValid Token"};
    if (!ReadStartDate(columns)) return BasketRefusal{"Invalid Date"};
    if (Verdict refusal = CheckPeriod(columns)) return refusal;
    for (const WordRule& rule : kWordRules)
        if (std::ranges::find(rule.words, columns[rule.field]) == std::end(rule.words))
            return BasketRefusal{rule.reason};
    if (std::ranges::find(m_rules.products, columns[BasketField::product]) == m_rules.products.end())
        return BasketRefusal{"InValid Product"};

    columns[BasketField::customerFirm] = "C";
    columns[BasketField::validity] = "DAY";
    columns[BasketField::sideWord] = columns[BasketField::action] == "B" ? "BUY" : "SELL";
    const bool byQuantity = columns[BasketField::investType] == "qty";
    if (Verdict refusal =
            byQuantity ? CheckQuantity(columns, lineNumber) : CheckAmount(columns, scrip, lineNumber))
        return refusal;
    columns[BasketField::remarks] = "NA";
    return std::nullopt;
}

// A basket names few scrips many times; the host is asked once for each.
const BasketCheck::Scrip& BasketCheck::LookUp(const BasketTexts& columns) {
    const std::string_view exchange = columns[BasketField::exchangeSegment];
    const std::string_view tradingSymbol = columns[BasketField::tradingSymbol];
    m_key.clear();
    for (const BasketField field :
         {BasketField::exchangeSegment, BasketField::series, BasketField::symbol, BasketField::tradingSymbol})
        m_key.append(columns[field]).push_back(',');
    const auto [place, isNew] = m_known.try_emplace(m_key);
    Scrip& scrip = place->second;
    if (!isNew) return scrip;
    scrip.details = m_scrips.Details(exchange, tradingSymbol);
    if (scrip.details) {
        const auto text = [](const auto& member) {
            return std::string(member, strnlen(member, sizeof member));
        };
        scrip.token = text(scrip.details->token);
        scrip.tradingSymbol = text(scrip.details->tradingSymbol);
    } else {
        scrip.tradingSymbol =
            m_scrips.TradingSymbol(exchange, columns[BasketField::series], columns[BasketField::symbol]);
    }
    return scrip;
}

// Day, month and year in the form that a row keeps; today is already too late.
bool BasketCheck::ReadStartDate(BasketTexts& columns) {
    const std::string_view typed = columns[BasketField::startDateText];
    if (m_dateNumber.empty() || typed != m_typedDate) {
        m_typedDate = typed;
        m_dateText = typed;
        std::ranges::replace(m_dateText, '-', '/');
        const std::size_t year = m_dateText.rfind('/');
        if (year != m_dateText.npos && m_dateText.size() - year - 1 < 3) m_dateText.insert(year + 1, "20");
        m_date = ParseDate(m_dateText);
        m_dateNumber = std::to_string(m_date);
    }
    columns[BasketField::startDateText] = m_dateText;
    columns[BasketField::startDate] = m_dateNumber;
    return m_date >= m_rules.now;
}

Verdict BasketCheck::CheckPeriod(const BasketTexts& columns) const {
    const std::string_view text = columns[BasketField::totalPeriod];
    const std::string_view frequency = columns[BasketField::frequency];
    if (text.empty() || text == "0" || !AllDigits(text)) return BasketRefusal{"Invalid Period"};
    const std::int64_t period = LeadingInteger(text);
    if (!m_rules.serverPeriods) {
        if (period < 1 || period > 60) return BasketRefusal{"Period Should be Between 1 and 60"};
        return std::nullopt;
    }
    const auto isListed = [&](const std::string& entry) { return EqualsIgnoringCase(entry, frequency); };
    if (std::ranges::none_of(m_rules.frequencies, isListed))
        return BasketRefusal{{}, Format("%s Frequency not set", std::string(frequency).c_str())};
    const FrequencyRow* row = FindFrequency(frequency);
    const double minimum = row ? m_rules.minimums[static_cast<std::size_t>(row - kFrequencies)] : 0.0;
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

Verdict BasketCheck::CheckAmount(BasketTexts& columns, const Scrip& scrip, int lineNumber) {
    const std::string_view text = columns[BasketField::amount];
    if (text.empty()) return BasketRefusal{"InValid Amount"};
    const double paise = LeadingReal(text);
    if (paise == 0.0) return BasketRefusal{"Enter valid Amount"};
    const bool isWhole = AllDigits(text) && text.front() != '0' && text.size() < 16;
    m_amount = isWhole ? std::string(text) : Format("%.lf", paise);
    columns[BasketField::amount] = m_amount;
    if (!AllDigits(m_amount)) return BasketRefusal{"InValid Amount"};
    const ScripDetails* details = scrip.details ? &*scrip.details : nullptr;
    const double divisor = details ? details->priceMultiplier : kDefaultDivisor;
    const int decimals = details ? std::clamp(details->decimals, 0, 9) : kDefaultDecimals;
    std::string message;
    if (CheckPriceRange(Format("%.*lf", decimals, LeadingReal(m_amount) / divisor), message, details, true))
        return std::nullopt;
    return BasketRefusal{InLine("Amount" + message, lineNumber), {}, true};
}

} // namespace planfold

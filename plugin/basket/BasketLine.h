// One line of a basket file: cut into its columns, checked rule by rule, and brought into the form in which a
// row keeps it.
#pragma once

#include "plugin/base/Frequencies.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/messaging/HostQuestions.h"
#include "sdk/HostRecords.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

// Where scrips are looked up: the host's master, or a file.
class ScripSource {
public:
    // By exchange segment and trading symbol. None when unknown.
    virtual std::optional<ScripDetails> Details(std::string_view exchange, std::string_view tradingSymbol) = 0;
    // By exchange segment, series and symbol. Empty when unknown.
    virtual ScripNames Names(std::string_view exchange, std::string_view series, std::string_view symbol) = 0;

protected:
    ~ScripSource() = default;
};

// What lines are checked against.
struct BasketRules {
    std::vector<std::string> products;    // allowed, exact
    std::vector<std::string> frequencies; // the server's list; counts with its periods
    bool serverPeriods = false;
    std::array<double, kFrequencyCount> minimums{}; // with the server's periods, in the order of kFrequencies
    std::int64_t now = 0;                           // seconds since 1 January 1970
};

// Reasons that the form gives as well.
inline constexpr const char* kInvalidFormat = "Invalid Format";
inline constexpr const char* kInvalidToken = "InValid Token";
inline constexpr const char* kInvalidPeriod = "Invalid Period";
inline constexpr const char* kInvalidAction = "InValid Action Type.";
inline constexpr const char* kInvalidInvestType = "InValid Invest Type.";
inline constexpr const char* kInvalidFrequency = "InValid Frequency.";
inline constexpr const char* kInvalidOrderType = "InValid Order Type";
inline constexpr const char* kInvalidProduct = "InValid Product";

// The columns as they stand, views into the line. False: not of the file's format.
bool SplitBasketLine(std::string_view line, BasketTexts& columns);

// Why a line is refused.
struct BasketRefusal {
    std::string reason;     // may be empty
    std::string notice{};   // for the user, at once
    bool logReason = false; // the reason goes to the log by itself
};

// Checks lines one after another; what it has found out about scrips and dates is kept for the next.
class BasketCheck {
public:
    BasketCheck(const BasketRules& rules, ScripSource& scrips) : m_rules(rules), m_scrips(scrips) {}

    // Puts the columns into the form of a row; what is made lives until the next check.
    std::optional<BasketRefusal> Validate(BasketTexts& columns, int lineNumber);

private:
    struct Scrip {
        std::string tradingSymbol; // expected
        std::optional<ScripDetails> details;
        std::string token;
        double largestInRange = 0.0; // of the amounts that have been checked, in paise
    };
    struct Date {
        std::string text; // as a row keeps it
        std::string number;
        std::int64_t seconds = -1;
    };

    Scrip& LookUp(const BasketTexts& columns);
    Scrip& LookUpByName(std::string_view exchange, const BasketTexts& columns);
    bool ReadStartDate(BasketTexts& columns);
    std::optional<BasketRefusal> CheckPeriod(const BasketTexts& columns) const;
    std::optional<BasketRefusal> CheckQuantity(const BasketTexts& columns, int lineNumber) const;
    std::optional<BasketRefusal> CheckAmount(BasketTexts& columns, Scrip& scrip, int lineNumber);

    const BasketRules& m_rules;
    ScripSource& m_scrips;
    // The key is trading symbol and exchange, and for scrips without details series and symbol besides.
    std::unordered_map<std::string, Scrip> m_known;
    std::string m_key;
    std::unordered_map<std::string, Date> m_dates; // as typed
    std::string m_amount;
};

} // namespace planfold

// One SIP order on its way from the form to the server.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/base/Frequencies.h"
#include "plugin/controls/DialogView.h"

#include <array>
#include <optional>
#include <string>

namespace planfold {

// The controls of the form as they read when Submit is pressed.
struct SipOrderForm {
    std::string exchange; // "NSE"
    std::string series;   // "EQ"
    std::string symbol;
    std::string action; // "SIP" or "SWP"
    std::string orderType;
    std::string product;
    std::string frequency;
    std::string investType; // "Amount" or "Quantity"
    std::string value;      // rupees or shares, as typed
    std::string totalPeriod;
    std::string account;
    LocalDateTime startDate;
    bool modifyMode = false;

    bool operator==(const SipOrderForm&) const = default;
};

// The order in the server's words. Empty when made, filled by ValidateSipOrder.
struct sSipOrderData {
    std::string orderType; // "MKT"
    std::string product;
    std::string frequency;
    std::string amountOrQuantity; // whole paise, or shares
    std::string totalPeriod;
    std::string startDate; // seconds since 1 January 1970, decimal
    std::string customerFirm;
    std::string validity;
    std::string investType; // "value" or "qty"
    std::string exchange;   // "nse_cm"
    std::string side;       // "B" or "S"
    std::string token;
    std::string tradingSymbol;
    std::string account;
    std::string sideWord; // "BUY" or "SELL", for log lines
};

// Why an order is refused, and to which control the user is led: IDC_VALUE wherever the form's value stands, 0
// to none.
struct Refusal {
    std::string text;
    int focus = 0;
};

// Where the forms that take an order differ.
struct FormTexts {
    const char* noToken = nullptr; // null: goes through
    const char* noClient = nullptr;
    const char* malformedQuantity = "Enter valid Quantity";
};

// How many periods an order may have.
struct PeriodRules {
    bool serverPeriods = false; // the server sets the least numbers; otherwise they are months
    std::array<double, kFrequencyCount> minimums{};
};
PeriodRules PeriodRulesOf(const Session& session);
std::optional<Refusal> CheckPeriods(const PeriodRules& rules, std::string_view frequency,
                                    const std::string& periods);

// The typed value in the server's words: "Amount" to whole paise, "Quantity" to shares; any other invest
// type leaves it as it is. A refused value is left in either form.
std::optional<Refusal> ValueToWire(std::string_view investType, std::string& value,
                                   const FormTexts& texts = {});

// Whether an order may start then; `now` is the local time.
std::optional<Refusal> CheckStartDate(const LocalDateTime& start, const LocalDateTime& now);

// Fills and checks the record, rule by rule; the first that fails is returned. `dialog` is handed to the
// host's scrip callbacks; `now` is the local time.
std::optional<Refusal> ValidateSipOrder(Pass pass, const Session& session, HostWindow dialog,
                                        const SipOrderForm& form, const LocalDateTime& now,
                                        sSipOrderData& record, const FormTexts& texts = {});

} // namespace planfold

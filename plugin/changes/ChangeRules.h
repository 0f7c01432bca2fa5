// What may be changed of a registration: its amount or quantity, and its periods, by the rules of the form that
// modifies one.
#pragma once

#include "plugin/changes/ChangeFile.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/orderentry/SipOrder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// A registration with its new value and periods, or why it is not changed.
struct Change {
    int line = 0; // of the file, from 1; 0 without one
    std::string registration;
    std::string account, accountName, tradingSymbol, side, frequency;
    bool isByQuantity = false;
    // In the server's words: paise or shares.
    std::string valueBefore, value;
    bool isAsTyped = false; // `value` could not be brought into them
    std::string periodsBefore, periods;
    std::uint64_t print = 0; // of the registration as it was judged
    std::string refusal;     // empty: it can be sent

    bool IsSale() const { return side == "SWP"; }
    bool ChangesValue() const { return value != valueBefore; }
    bool ChangesPeriods() const { return periods != periodsBefore; }
    // Paise or shares more a run; 0 of what is refused.
    std::int64_t More() const;
};

struct ChangeRules {
    bool serverPeriods = false; // which of a record's two fields holds its periods
    PeriodRules periods;
    std::string user; // whose registrations can be changed; empty: everybody's
};
ChangeRules ChangeRulesOf(const Session& session);

// The registration as it is. `value` and `periods` are as typed: rupees or shares, and a number.
Change Propose(const sOrderinfo& record, const ChangeRules& rules, const std::string& value,
               const std::string& periods);
// Why nothing can be changed of it; empty when something can.
std::string WhyNot(const sOrderinfo& record, const ChangeRules& rules);

// A line of the file over the book. None when it changes nothing.
std::optional<Change> JudgeRow(const ChangeFile::Row& row, bool decimalComma, bool hasStamps,
                               const OrderCache& book, const ChangeRules& rules);

} // namespace planfold

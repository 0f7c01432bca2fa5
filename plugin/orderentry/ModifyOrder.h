// Changing a registered order: what the form is filled with, and the request.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"
#include "sdk/RxControl.h"

#include <string>

namespace planfold {

// A registration as the book shows it.
struct SipRegistration {
    std::string number;
    std::string exchange;
    std::string frequency;
    std::string orderType;
    std::string product;
    std::string totalPeriod; // months
    std::string installments;
    std::string tradingSymbol;
    std::string action;
    std::string investType; // "value" or "qty"
    std::string amount;     // rupees
    std::string quantity;
    std::string startDate; // "05-Mar-2027"
    std::string account;
    std::string nextExecutionDate;
    std::string endDate;
    std::string status;
    std::string changedBy; // the last one
};

// Symbol and series of a trading symbol, divided at its last "-"; without one the series is empty.
struct SymbolAndSeries {
    std::string symbol;
    std::string series;
};
SymbolAndSeries SplitTradingSymbol(std::string_view tradingSymbol);

// A date as the server writes it, "05-Mar-2027". None when its month is no month's name.
std::optional<LocalDateTime> ReadServerDate(std::string_view text);

// The request modify_sip_order with the record's value and period. Sent is logged; the reason of a failure is
// shown.
bool SendModifySipOrder(Pass pass, Session& session, RxControl* control, Notices& notices,
                        std::string_view number, const sSipOrderData& order);

} // namespace planfold

// One exchange order of a registration, how messages fill it, and what of it is shown.
#pragma once

#include "plugin/controls/Lists.h"
#include "plugin/messaging/Session.h"

#include <array>
#include <string>
#include <string_view>

namespace planfold {

enum class HistoryField {
    loginId,
    account,
    exchange,
    tradingSymbol,
    registrationNumber,
    orderNumber,
    orderStatus,
    orderSource,
    placementTime,
    side,
    orderType,
    unused11, // no message fills it
    quantity,
    price,
    tradedPrice,
    tradedQuantity,
    unused16, // no message fills it
    fillDetailA,
    fillDetailB,
    userText,
    count
};

struct sOrderHistory {
    std::array<std::string, static_cast<std::size_t>(HistoryField::count)> texts;
    bool fillPending = false; // its trades are still to tell how it was filled

    std::string& operator[](HistoryField field) { return texts[static_cast<std::size_t>(field)]; }
    const std::string& operator[](HistoryField field) const { return texts[static_cast<std::size_t>(field)]; }
};

// What the message's whole-number prices are divided by; asks the host.
double AskPriceDivisor(Pass pass, const Session& session, void* message);

sOrderHistory ReadHistoryOrder(void* message, double priceDivisor);
// Only the fields that a trade knows.
sOrderHistory ReadHistoryTrade(void* message, double priceDivisor);
// Takes over what the trade tells of the order.
void ApplyTrade(const sOrderHistory& trade, sOrderHistory& order);

using HistoryColumn = ListColumn<HistoryField>;
inline constexpr HistoryColumn kHistoryColumns[] = {
    {"User ID", 100, HistoryField::loginId},
    {"Order Status", 100, HistoryField::orderStatus},
    {"Order Source", 50, HistoryField::orderSource},
    {"Order Placement TimeStamp", 200, HistoryField::placementTime},
    {"Price", 50, HistoryField::price, ValueType::amount, Align::right},
    {"Quantity", 50, HistoryField::quantity, ValueType::number, Align::right},
    {"Remarks", 100, HistoryField::userText},
};

// The last one joins both fill details.
inline constexpr std::size_t kHistoryDetailCount = 9;
using HistoryDetails = std::array<std::string, kHistoryDetailCount>;
// An empty field that is shown becomes "NA", in the record as well: later displays and trades see it so.
HistoryDetails TakeDetails(sOrderHistory& order);

} // namespace planfold

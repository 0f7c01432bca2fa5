// The columns of the two books, in order.
#pragma once

#include "plugin/controls/ListColumn.h"
#include "plugin/orderbook/OrderInfo.h"

#include <span>

namespace planfold {

using BookColumn = ListColumn<OrderField>;

inline constexpr BookColumn kBookColumns[] = {
    {"User ID", 100, OrderField::loginId},
    {"Client ID", 100, OrderField::account},
    {"Exchange", 50, OrderField::exchange},
    {"Trading Symbol", 200, OrderField::tradingSymbol},
    {"Product", 100, OrderField::product},
    {"Action", 50, OrderField::side},
    {"Order Type", 75, OrderField::orderType},
    {"Amount", 50, OrderField::amount, ValueType::amount, Align::right},
    {"Quantity", 50, OrderField::quantity, ValueType::number, Align::right},
    {"Frequency", 75, OrderField::frequency},
    {"Start Date", 100, OrderField::startDate},
    {"Total Period(Month(s))", 200, OrderField::totalPeriod},
    {"Next Exec Date", 150, OrderField::nextExecutionDate},
    {"SIP Status", 150, OrderField::sipStatus},
    {"SIP Registration No ", 100, OrderField::registrationNumber, ValueType::identifier},
    {"SIP Registration Date", 100, OrderField::registrationDate},
    {"Account Name", 100, OrderField::accountName},
    {"Order Source", 50, OrderField::orderSource},
    {"End Date", 100, OrderField::endDate},
    {"No of Installments registered", 50, OrderField::installmentsRegistered, ValueType::number, Align::right},
    {"Remarks", 100, OrderField::userText},
    {"Cancelled By", 100, OrderField::cancelledBy},
    {"Cancelled Date", 100, OrderField::cancelledDate},
};

// The registered book ends before the three of the cancellation.
inline constexpr std::span<const BookColumn> kCancelledColumns = kBookColumns;
inline constexpr std::span<const BookColumn> kRegisteredColumns = kCancelledColumns.first<20>();
// The one that the active client filters.
inline constexpr int kClientColumn = 1;
static_assert(kBookColumns[kClientColumn].field == OrderField::account);

} // namespace planfold

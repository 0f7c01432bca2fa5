#include "plugin/orderbook/RecordedRow.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>

namespace planfold {

namespace {

// Of "05-Mar-2027".
std::string SortableDate(std::string_view date) {
    const std::int64_t seconds = ParseDate(date);
    if (seconds < 0) return {};
    const LocalDateTime day = ToLocal(seconds);
    return Format("%04d-%02d-%02d", day.year, day.month, day.day);
}

} // namespace

RecordedRow::RecordedRow(const sOrderinfo& record, bool installments)
    : m_exchange(record.Text(OrderField::exchange)), m_side(record.Text(OrderField::side)) {
    const std::string_view status = record.Text(OrderField::sipStatus);
    const std::string_view investType = record.Text(OrderField::investType);
    Convert(kExchangeToServer, record.Text(OrderField::exchange), m_exchange);
    Convert(kPlanToServer, record.Text(OrderField::side), m_side);
    m_value = investType == "value" ? InPaise(record.Text(OrderField::amount))
                                    : std::string(record.Text(OrderField::quantity));
    m_row.orderId = record.Text(OrderField::orderId);
    m_row.registration = record.Number();
    m_row.status = status;
    m_row.isLive = !IsCancelled(status) && !HasEnded(status);
    if (m_row.orderId.empty())
        m_row.enteredOn = m_enteredOn = SortableDate(record.Text(OrderField::registrationDate));
    RecordTexts& asked = m_row.asked;
    asked[RecordField::account] = record.Text(OrderField::account);
    asked[RecordField::exchange] = m_exchange;
    asked[RecordField::tradingSymbol] = record.Text(OrderField::tradingSymbol);
    asked[RecordField::side] = m_side;
    asked[RecordField::investType] = investType;
    asked[RecordField::value] = m_value;
    asked[RecordField::frequency] = record.Text(OrderField::frequency);
    asked[RecordField::startDate] = record.Text(OrderField::startDate);
    asked[RecordField::periods] = record.Text(PeriodsField(record, installments));
}

} // namespace planfold

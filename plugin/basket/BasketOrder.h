// One row of the basket: texts by field in one block of memory.
#pragma once

#include "plugin/base/Text.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "plugin/orderentry/SipOrder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace planfold {

// Where the basket says it in other words than the form of one order.
inline constexpr FormTexts kBasketTexts{"Enter Token", "Please select the ClientID", "Enter valid Qty"};

// The columns of a basket's file, in their order, and behind them what no file has.
enum class BasketField : std::uint8_t {
    account,
    exchange, // "nse_cm"
    series,
    symbol,
    token,
    tradingSymbol,
    product,
    amount, // paise
    quantity,
    frequency,
    startDate,     // seconds since 1 January 1970, decimal
    startDateText, // day/month/year
    totalPeriod,
    orderType, // "MKT"
    side,      // "B" or "S"
    sideWord,  // "BUY" or "SELL"
    customerFirm,
    validity,
    investType, // "value" or "qty"
    userText,   // the server's answer
    count
};
inline constexpr std::size_t kBasketFieldCount = static_cast<std::size_t>(BasketField::count);

constexpr auto MakeBasketColumns() {
    std::array<BasketField, kBasketFieldCount - 1> columns{};
    for (std::size_t i = 0; i < columns.size(); ++i)
        columns[i] = static_cast<BasketField>(i);
    return columns;
}
inline constexpr auto kBasketColumns = MakeBasketColumns();

// The texts of a row while it is put together; they are whoever's.
using BasketTexts = ByField<BasketField, std::string_view>;

class sBasketOrderData {
public:
    sBasketOrderData() = default;
    // Copies the texts. What would make the row longer than 65,535 characters is cut off.
    sBasketOrderData(const BasketTexts& texts, std::int32_t serialNumber);

    // All valid until the row is changed.
    std::string_view Text(BasketField field) const;
    BasketTexts Texts() const;
    // The file's columns, with a comma between each two.
    std::string_view Columns() const;
    void SetUserText(std::string_view text);

    // By which the server's answer finds its row.
    std::int32_t SerialNumber() const { return m_serialNumber; }
    void SetSerialNumber(std::int32_t number) { m_serialNumber = number; }
    // Of the memory that the texts take.
    std::size_t Size() const;

private:
    // Where each text ends, counted from the first one; then the texts, with a comma between each two.
    using Ends = std::array<std::uint16_t, kBasketFieldCount>;

    std::unique_ptr<char[]> m_block;
    std::int32_t m_serialNumber = 0;
};

// Which text of a row is which of the order that is sent.
struct SipOrderField {
    BasketField field;
    std::string sSipOrderData::*member;
};
inline constexpr SipOrderField kSipOrderFields[] = {
    {BasketField::orderType, &sSipOrderData::orderType},
    {BasketField::product, &sSipOrderData::product},
    {BasketField::frequency, &sSipOrderData::frequency},
    {BasketField::totalPeriod, &sSipOrderData::totalPeriod},
    {BasketField::startDate, &sSipOrderData::startDate},
    {BasketField::customerFirm, &sSipOrderData::customerFirm},
    {BasketField::validity, &sSipOrderData::validity},
    {BasketField::exchange, &sSipOrderData::exchange},
    {BasketField::side, &sSipOrderData::side},
    {BasketField::token, &sSipOrderData::token},
    {BasketField::tradingSymbol, &sSipOrderData::tradingSymbol},
    {BasketField::account, &sSipOrderData::account},
    {BasketField::sideWord, &sSipOrderData::sideWord},
    {BasketField::investType, &sSipOrderData::investType},
};

// Where a row keeps what an order of this invest type is for.
inline BasketField ValueField(std::string_view investType) {
    return investType == "value" ? BasketField::amount : BasketField::quantity;
}

// What the row orders, in the words of the order record; valid until the next call.
RecordTexts AskedForBy(const BasketTexts& row, StartDates& dates);

} // namespace planfold

// Which text of a basket row is which of the order that is sent.
#pragma once

#include "plugin/basket/BasketOrder.h"
#include "plugin/orderentry/SipOrder.h"

#include <string>
#include <string_view>

namespace planfold {

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

} // namespace planfold

// The columns of the basket's list, and what stands in its cells.
#pragma once

#include "plugin/basket/BasketOrder.h"
#include "plugin/controls/Lists.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace planfold {

using BasketColumn = ListColumn<BasketField>;

// No text of the row itself: what has become of it.
inline constexpr BasketField kStateOfRow = BasketField::count;

inline constexpr BasketColumn kBasketListColumns[] = {
    {"Client ID", 50, BasketField::account},
    {"Exchange", 50, BasketField::exchange},
    {"Series", 50, BasketField::series},
    {"Symbol", 100, BasketField::symbol},
    {"Product", 50, BasketField::product},
    {"Amount", 70, BasketField::amount, ValueType::amount, Align::right},
    {"Quantity", 70, BasketField::quantity, ValueType::number, Align::right},
    {"Frequency", 50, BasketField::frequency},
    {"Start Date", 150, BasketField::startDateText},
    {"Total Period", 50, BasketField::totalPeriod, ValueType::number},
    {"Order Type", 50, BasketField::orderType},
    {"Action", 50, BasketField::side},
    {"Remarks", 50, BasketField::userText},
    {"State", 190, kStateOfRow},
};

// The texts of the cells. What a row does not keep as it is shown is kept here, once for equal texts.
class BasketCells {
public:
    // Valid until the row is changed.
    std::string_view Text(const sBasketOrderData& row, BasketField field);

private:
    std::unordered_map<std::string, std::string> m_amounts, m_quantities; // as they are shown
};

} // namespace planfold

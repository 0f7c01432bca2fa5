#include "plugin/basket/BasketColumns.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>

namespace planfold {

std::string_view BasketCells::Text(const sBasketOrderData& row, BasketField field) {
    const std::string_view text = row.Text(field);
    switch (field) {
    case BasketField::amount: {
        const auto [shown, isNew] = m_amounts.try_emplace(std::string(text));
        if (isNew) shown->second = Format("%.02f", LeadingReal(text) / 100.0);
        return shown->second;
    }
    case BasketField::quantity: {
        const auto [shown, isNew] = m_quantities.try_emplace(std::string(text));
        if (isNew) shown->second = Format("%.0f", LeadingReal(text));
        return shown->second;
    }
    case BasketField::side: {
        const auto shown = std::ranges::find(kPlanToDisplay, text, &CodeRow::from);
        return shown == kPlanToDisplay.end() ? text : shown->to;
    }
    default:
        return text;
    }
}

} // namespace planfold

// The terminal's scrip master as what baskets are checked against.
#pragma once

#include "host/market/ScripMaster.h"
#include "plugin/basket/BasketLine.h"

namespace basket {

class MasterScrips final : public planfold::ScripSource {
public:
    // The master outlives this.
    explicit MasterScrips(const vesk::ScripMaster& master) : m_master(master) {}

    std::optional<ScripDetails> Details(std::string_view exchange, std::string_view tradingSymbol) override;
    planfold::ScripNames Names(std::string_view exchange, std::string_view series,
                               std::string_view symbol) override;

private:
    const vesk::ScripMaster& m_master;
};

} // namespace basket

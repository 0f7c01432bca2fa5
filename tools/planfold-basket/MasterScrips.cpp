#include "tools/planfold-basket/MasterScrips.h"

namespace basket {

std::optional<ScripDetails> MasterScrips::Details(std::string_view exchange, std::string_view tradingSymbol) {
    const vesk::Scrip* scrip = m_master.ByTradingSymbol(exchange, tradingSymbol);
    if (!scrip) return std::nullopt;
    ScripDetails details{};
    details.decimals = scrip->decimals;
    details.priceMultiplier = scrip->multiplier;
    details.tickSize = scrip->tickSize;
    // The master has checked that both fit with a zero behind them.
    scrip->token.copy(details.token, sizeof details.token - 1);
    scrip->tradingSymbol.copy(details.tradingSymbol, sizeof details.tradingSymbol - 1);
    return details;
}

planfold::ScripNames MasterScrips::Names(std::string_view exchange, std::string_view series,
                                         std::string_view symbol) {
    const vesk::Scrip* scrip = m_master.BySymbol(exchange, series, symbol);
    if (!scrip) return {};
    return {scrip->tradingSymbol, scrip->token, scrip->company};
}

} // namespace basket

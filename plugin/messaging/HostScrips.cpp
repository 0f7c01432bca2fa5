#include "plugin/messaging/HostScrips.h"

namespace planfold {

std::optional<ScripDetails> AskScripDetails(Pass pass, const Session& session, std::string_view exchange,
                                            std::string_view tradingSymbol) {
    if (!session.host.pu_get_scrip_details_from_TradSymbol) return std::nullopt;
    const CString exchangeText = session.String(exchange);
    const CString symbolText = session.String(tradingSymbol);
    ScripDetails details{};
    const ScripDetails* found =
        session.host.pu_get_scrip_details_from_TradSymbol(pass, &exchangeText, &symbolText, &details);
    if (!found) return std::nullopt;
    return *found;
}

ScripNames AskScripNames(Pass pass, const Session& session, std::string_view exchangeCode,
                         std::string_view series, std::string_view symbol) {
    if (!session.host.pu_get_intersted_scrip_field) return {};
    constexpr int fieldCount = 6;
    std::string keyText(exchangeCode);
    keyText.append("|").append(series).append("|").append(symbol);
    const CString key = session.String(keyText);
    CString exchange = session.String(), seriesOut = exchange, symbolOut = exchange;
    CString token = exchange, tradingSymbol = exchange, company = exchange;
    session.host.pu_get_intersted_scrip_field(pass, &key, 0, fieldCount, &exchange, &seriesOut, &symbolOut,
                                              &token, &tradingSymbol, &company);
    return {std::string(tradingSymbol.View()), std::string(token.View()), std::string(company.View())};
}

std::string AskTradingSymbol(Pass pass, const Session& session, std::string_view exchangeCode,
                             std::string_view series, std::string_view symbol) {
    return AskScripNames(pass, session, exchangeCode, series, symbol).tradingSymbol;
}

} // namespace planfold

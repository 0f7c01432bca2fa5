#include "plugin/messaging/HostQuestions.h"

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

std::string AskClientName(Pass pass, const Session& session, std::string_view client) {
    if (!session.host.pu_get_client_name) return {};
    CString name = session.String();
    const CString identifier = session.String(client);
    session.host.pu_get_client_name(pass, &name, &identifier);
    return std::string(name.View());
}

bool IsUnknownClient(Pass pass, const Session& session, std::string_view client) {
    if (!session.host.pu_is_valid_account) return false;
    const CString account = session.String(client);
    return session.host.pu_is_valid_account(pass, &account) == 0;
}

std::string UnknownClientQuestion(std::string_view client) {
    constexpr std::size_t longest = 60; // what is no client may be anything
    const std::string what = client.empty()
                                 ? "The order names no client"
                                 : "The terminal knows no client " + std::string(client.substr(0, longest));
    return what + ".\nPlace the order all the same?";
}

} // namespace planfold

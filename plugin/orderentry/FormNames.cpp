#include "plugin/orderentry/FormNames.h"

#include "plugin/base/Codes.h"
#include "plugin/messaging/HostQuestions.h"

namespace planfold {

void FormNames::Ask(Pass pass, const SipOrderForm& form, std::string_view tradingSymbol) {
    AskCompany(pass, form, tradingSymbol);
    if (form.account != m_clientAsked) AskClient(pass, form.account);
}

void FormNames::AskCompany(Pass pass, const SipOrderForm& form, std::string_view tradingSymbol) {
    std::string exchange;
    Convert(kExchangeToServer, form.exchange, exchange);
    // A trading symbol may come without its series.
    const std::string series = form.series.empty() ? "EQ" : form.series;
    const std::string key = exchange + "|" + series + "|" + form.symbol;
    if (key == m_scripKey) return;
    m_scripKey = key;
    const ScripNames names =
        form.symbol.empty() ? ScripNames{} : AskScripNames(pass, m_session, exchange, series, form.symbol);
    // The host may have let another change of the form in.
    if (m_scripKey != key) return;
    const bool meant = tradingSymbol.empty() || names.tradingSymbol == tradingSymbol;
    m_company = meant ? names.company : std::string();
}

void FormNames::AskClient(Pass pass, const std::string& client) {
    m_clientAsked = client;
    const auto& host = m_session.host;
    const std::string name = client.empty() ? client : AskClientName(pass, m_session, client);
    const bool unknown = !client.empty()
                         && (host.pu_is_valid_account ? IsUnknownClient(pass, m_session, client)
                                                      : host.pu_get_client_name != nullptr && name.empty());
    if (m_clientAsked != client) return;
    m_clientIsUnknown = unknown;
    m_client = client;
    if (unknown)
        m_client += " (unknown client)";
    else if (!name.empty())
        m_client += " (" + name + ")";
}

std::string FormNames::Text() const {
    if (m_client.empty()) return m_company;
    return m_company.empty() ? "For " + m_client : m_company + " for " + m_client;
}

} // namespace planfold

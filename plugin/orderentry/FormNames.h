// The names behind the codes of an order: the scrip's company and the client, as the host knows them.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"

#include <string>
#include <string_view>

namespace planfold {

class FormNames {
public:
    explicit FormNames(const Session& session) : m_session(session) {}

    // Asks the host about what has changed since it was last asked. The company is that of the scrip with this
    // trading symbol, or of any when that is not known.
    void Ask(Pass pass, const SipOrderForm& form, std::string_view tradingSymbol);
    // Asks anew the next time.
    void Forget() { m_scripKey = m_clientAsked = kNothingAsked; }

    // "Arbor Tools Ltd for CL105 (Farhan Dutta)".
    std::string Text() const;
    bool ClientIsUnknown() const { return m_clientIsUnknown; }

private:
    void AskCompany(Pass pass, const SipOrderForm& form, std::string_view tradingSymbol);
    void AskClient(Pass pass, const std::string& client);

    static constexpr char kNothingAsked[] = "\n"; // no code is that

    const Session& m_session;
    std::string m_scripKey = kNothingAsked;
    std::string m_clientAsked = kNothingAsked;
    std::string m_company;
    std::string m_client; // with its name
    bool m_clientIsUnknown = false;
};

} // namespace planfold

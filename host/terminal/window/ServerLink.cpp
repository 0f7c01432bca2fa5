#include "host/terminal/window/ServerLink.h"

#include "host/server/Server.h"
#include "host/server/ServerConfig.h"

#include <windows.h>

namespace vesk {

ServerLink::ServerLink(const std::string& configFile, const std::string& journalFile, UserIdentity user,
                       std::vector<std::string>& notes)
    : m_journalFile(journalFile), m_user(std::move(user)) {
    ConfigResult config = LoadServerConfig(configFile);
    if (!config.config) notes.push_back(config.error + "; the server runs with its usual settings");
    JournalOpening opening = Journal::Open(journalFile);
    if (!opening.warning.empty()) notes.push_back(opening.warning);
    if (!opening.journal) {
        notes.push_back(opening.error + "; there is no trading server");
        return;
    }
    m_journal = std::move(opening.journal);
    ServerClock clock = SystemClock();
    clock.now = [this, now = clock.now] { return now() + m_clockOffset; };
    m_server = std::make_unique<Server>(config.config.value_or(ServerConfig{}), *m_journal, opening.records,
                                        std::move(clock));
    if (!m_server->ReplayError().empty()) notes.push_back(m_server->ReplayError());
    m_hub = std::make_unique<RxHub>(*m_server, m_user);
    notes.push_back("Trading server ready, " + std::to_string(opening.records.size()) + " journal records");
}

RxControl* ServerLink::GetControl(int kind, CKeloRxNotifierBase* notifier) {
    return m_hub ? m_hub->Get(kind, notifier) : nullptr;
}

void ServerLink::DestroyControl(RxControl* control) {
    if (m_hub) m_hub->Destroy(control);
}

void ServerLink::Pump() {
    if (m_hub) m_hub->Pump(static_cast<std::int64_t>(GetTickCount64()));
}

UserIdentity ServerLink::OtherUser() const {
    return {"OTHERDESK", m_user.peerIdA, m_user.peerIdB};
}

std::string ServerLink::Fill(std::size_t count, SampleMarket market) {
    if (!m_server) return "there is no trading server";
    return m_server->Fill({count, {m_user, OtherUser()}, std::move(market)});
}

std::size_t ServerLink::PlaceOthersOrders(std::size_t count, SampleMarket market) {
    if (!m_server) return 0;
    // A seed of its own for each time; the same history gives the same orders.
    OtherSession other(*m_server, OtherUser(), std::move(market), m_server->Registrations().size());
    return other.PlaceOrders(count, static_cast<std::int64_t>(GetTickCount64()));
}

} // namespace vesk

#include "host/terminal/window/ServerLink.h"

#include "host/server/Server.h"
#include "host/server/ServerConfig.h"

#include <windows.h>

namespace vesk {
namespace {

constexpr const char* kOtherLogin = "DEALER02";
constexpr const char* kNoServer = "There is no trading server";

} // namespace

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
    UserIdentity other = m_user;
    other.loginId = kOtherLogin;
    return other;
}

std::string ServerLink::Fill(std::size_t count, SampleMarket market) {
    if (!m_server) return kNoServer;
    if (market.accounts.empty() || market.scrips.empty())
        return "There are no clients or no scrips to fill with";
    FillPlan plan{count, {m_user, OtherUser()}, std::move(market)};
    plan.seed += m_server->Registrations().size(); // a second filling brings others
    return m_server->Fill(plan);
}

std::size_t ServerLink::PlaceOtherOrders(std::size_t count, SampleMarket market) {
    if (!m_server) return 0;
    if (!m_other)
        m_other = std::make_unique<OtherSession>(*m_server, OtherUser(), std::move(market), GetTickCount64());
    return m_other->PlaceOrders(count, static_cast<std::int64_t>(GetTickCount64()));
}

std::string ServerLink::LatestRegistration() const {
    if (!m_server || m_server->Registrations().empty()) return {};
    return std::string(m_server->Registrations().back().Number());
}

std::string ServerLink::Execute(std::size_t count, const std::string& number, const ScripMaster& master) {
    if (!m_server) return kNoServer;
    const Registration* registration = m_server->Find(number);
    if (!registration) return "There is no registration " + number;
    ExecutionPlan plan{m_server->OpenDays(*registration, count)};
    if (plan.days.size() < count)
        return "There are no more than " + std::to_string(plan.days.size()) + " days for instalments of "
               + number;
    const Scrip* scrip =
        master.ByTradingSymbol(registration->Text(kTagExchange), registration->Text(kTagTradingSymbol));
    if (scrip) plan.price = scrip->lastPrice;
    return m_server->Execute(*registration, plan);
}

std::vector<std::uint32_t> ServerLink::RestrictedDates() const {
    std::vector<std::uint32_t> numbers;
    if (!m_server) return numbers;
    for (const auto date : m_server->Restricted().All())
        numbers.push_back(static_cast<std::uint32_t>(int{date.year()}) * 10'000 + unsigned{date.month()} * 100
                          + unsigned{date.day()});
    return numbers;
}

} // namespace vesk

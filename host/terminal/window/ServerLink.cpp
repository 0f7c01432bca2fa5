#include "host/terminal/window/ServerLink.h"

#include "host/files/Files.h"
#include "host/server/sample/MarketOfServer.h"
#include "host/server/schedule/Schedule.h"
#include "host/terminal/window/Encoding.h"

#include <windows.h>

#include <utility>

namespace vesk {
namespace {

constexpr const char* kNoServer = "There is no trading server";

// Of one pump; what waits to be delivered goes first.
constexpr std::chrono::milliseconds kExecutionTime{8};
constexpr std::size_t kMostWaiting = 2000;

std::int64_t NowMs() {
    return static_cast<std::int64_t>(GetTickCount64());
}

} // namespace

ServerLink::ServerLink(const TerminalState& state, const std::string& journalFile, LinkEvents events,
                       std::vector<std::string>& notes)
    : m_events(std::move(events)), m_status{"No trading server", true} {
    ConfigResult config = LoadServerConfig(state.dataFolder + "/server.json");
    if (!config.config) notes.push_back(config.error + "; the server runs with its usual settings");
    JournalOpening opening = Journal::Open(PathOf(journalFile));
    if (!opening.warning.empty()) notes.push_back(ForScreen(opening.warning));
    if (opening.journal)
        StartServer(state, std::move(opening), config.config.value_or(ServerConfig{}), notes);
    else
        notes.push_back(ForScreen(opening.error) + "; there is no trading server");
}

ServerLink::ServerLink(const ServerAddress& address, UserIdentity user, LinkEvents events)
    : m_name(address.host + ":" + std::to_string(address.port)),
      m_events(std::move(events)), m_status{m_name + " connecting"} {
    Connect(std::make_unique<TcpChannel>(address), std::move(user));
}

void ServerLink::StartServer(const TerminalState& state, JournalOpening opening, ServerConfig config,
                             std::vector<std::string>& notes) {
    m_journal = std::move(opening.journal);
    config.nonTrading = DatesOf(state.calendar.Dates());
    m_server = std::make_unique<Server>(std::move(config), *m_journal, opening.records, SystemClock());
    m_server->Clock().SetPrices(PricesOf(state.master));
    m_server->SetClients(ClientsOf(state.clients));
    if (!m_server->ReplayError().empty()) notes.push_back(m_server->ReplayError());
    const std::size_t records = opening.records.size();
    opening.records.clear();
    opening.text.reset(); // the server has read it, and it may be large
    if (std::string note = m_server->CompactWhenStale(); !note.empty()) notes.push_back(std::move(note));
    m_commands.emplace(*m_server, SampleMarketOf(state.master, state.clients));
    m_status = {"Embedded server"};
    for (const auto date : m_server->Clock().Restricted().All())
        m_restricted.push_back(DateNumber(date));
    Connect(std::make_unique<SessionChannel>(*m_server, *m_commands),
            {state.config.loginId, state.config.peerIdA, state.config.peerIdB});
    m_client->Pump(NowMs()); // a subscription or command that comes at once finds it connected
    notes.push_back("Trading server ready, " + std::to_string(records) + " journal records");
}

void ServerLink::Connect(std::unique_ptr<Channel> channel, UserIdentity user) {
    m_client.emplace(
        std::move(channel), std::move(user),
        [this](LinkState state, const std::string& text) { OnState(state, text); },
        [this](const net::ServerState& state) {
            if (std::exchange(m_restricted, state.restricted) != state.restricted) m_events.restrictedDays();
        });
}

// The attempts to come back change nothing that is shown, and are not told one by one.
void ServerLink::OnState(LinkState state, const std::string& text) {
    const bool isLost = state == LinkState::lost;
    if (m_name.empty()) {
        if (isLost) m_events.say("Trading server: " + text + "; trying again");
        return;
    }
    if (state == LinkState::connecting) return;
    LinkStatus status{m_name + (isLost ? " not connected" : " connected"), isLost};
    if (status == m_status) return;
    m_status = std::move(status);
    m_events.say("Trading server " + m_name + ": " + text + (isLost ? "; trying again" : ""));
}

void ServerLink::Pump() {
    if (m_client) m_client->Pump(NowMs());
    if (m_server && m_server->Clock().HasDue() && m_client->Waiting() <= kMostWaiting) ExecuteDue();
}

void ServerLink::ExecuteDue() {
    const Executed done = m_server->Clock().ExecuteDue(kExecutionTime);
    m_executed += done.instalments;
    if (m_executed != 0 && !m_server->Clock().HasDue()) {
        m_events.say("Clock " + RecordDate(m_server->Clock().Today()) + ": " + std::to_string(m_executed)
                     + (m_executed == 1 ? " instalment executed" : " instalments executed"));
        m_executed = 0;
    }
    if (!done.fault.empty()) m_events.say(done.fault);
}

bool ServerLink::IsIdle() const {
    if (!m_client) return true;
    return m_client->State() == LinkState::connected && !m_client->Server().hasDue
           && !(m_server && m_server->Clock().HasDue()) && m_client->Waiting() == 0;
}

std::string ServerLink::Date() const {
    const std::uint32_t number = m_client ? m_client->Server().date : 0;
    return number == 0 ? std::string() : RecordDate(DateOf(number));
}

std::string ServerLink::LatestRegistration() const {
    if (!m_server || m_server->Registrations().empty()) return {};
    return std::string(m_server->Registrations().back().Number());
}

void ServerLink::Command(const std::string& line, std::function<void(const Told&)> told) {
    if (m_client)
        m_client->Command(line, std::move(told));
    else
        told({false, kNoServer});
}

} // namespace vesk

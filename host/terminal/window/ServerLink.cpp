#include "host/terminal/window/ServerLink.h"

#include "host/files/Files.h"
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

} // namespace

std::int64_t ServerLink::NowMs() {
    return static_cast<std::int64_t>(GetTickCount64());
}

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

ServerLink::ServerLink(const ServerAddress& address, const std::string& secretsFile, UserIdentity user,
                       LinkEvents events)
    : m_name(address.host + ":" + std::to_string(address.port)),
      m_events(std::move(events)), m_status{m_name + " connecting"} {
    Connect(std::make_unique<TcpChannel>(address, secretsFile), std::move(user));
}

void ServerLink::StartServer(const TerminalState& state, JournalOpening opening, ServerConfig config,
                             std::vector<std::string>& notes) {
    m_server = std::make_unique<MarketServer>(std::move(opening), std::move(config), state.master,
                                              state.clients, state.calendar, false);
    Server& server = m_server->Serving();
    if (!server.Journal().ReplayError().empty()) notes.push_back(server.Journal().ReplayError());
    m_status = {"Embedded server"};
    for (const auto date : server.Clock().Restricted().All())
        m_restricted.push_back(DateNumber(date));
    Connect(std::make_unique<SessionChannel>(server, m_server->Commands()),
            {state.config.loginId, state.config.peerIdA, state.config.peerIdB});
    m_client->Pump(NowMs()); // a subscription or command that comes at once finds it connected
    notes.push_back("Trading server ready, " + std::to_string(m_server->Records()) + " journal records");
}

void ServerLink::Connect(std::unique_ptr<Channel> channel, UserIdentity user) {
    m_client.emplace(
        std::move(channel), std::move(user),
        [this](LinkState state, const std::string& text) { OnState(state, text); },
        [this](const net::ServerState& state) {
            if (std::exchange(m_restricted, state.restricted) != state.restricted) m_events.restrictedDays();
        });
}

// The attempts to come back change nothing that is shown, and are not told one by one. What is told of a
// connection that stands, as a subscription that is refused, is.
void ServerLink::OnState(LinkState state, const std::string& text) {
    const bool isLost = state == LinkState::lost;
    if (m_name.empty()) {
        if (isLost) m_events.say("Trading server: " + text + "; trying again");
        return;
    }
    if (state == LinkState::connecting) return;
    LinkStatus status{m_name + (isLost ? " not connected" : " connected"), isLost};
    if (status == m_status && isLost) return;
    m_status = std::move(status);
    m_events.say("Trading server " + m_name + ": " + text + (isLost ? "; trying again" : ""));
}

void ServerLink::Pump() {
    if (m_client) m_client->Pump(NowMs());
    if (m_server)
        if (const std::string note = m_server->Serving().Upkeep().RenewWhenStale(kExecutionTime); !note.empty())
            m_events.say(note);
    if (HasDue() && m_client->Waiting() <= kMostWaiting) ExecuteDue();
}

void ServerLink::Flush(std::chrono::milliseconds longest) {
    constexpr DWORD pauseMs = 5;
    for (const std::int64_t end = NowMs() + longest.count(); RequestCount() != 0 && NowMs() < end;)
        if (!m_client->Flush(NowMs())) Sleep(pauseMs);
}

void ServerLink::Leave() {
    constexpr std::chrono::milliseconds longest{500};
    if (RequestCount() == 0) return;
    Flush(longest);
    m_client->Leave();
}

bool ServerLink::HasDue() const {
    return m_server && m_server->Serving().Clock().HasDue();
}

void ServerLink::ExecuteDue() {
    Clockwork& clock = m_server->Serving().Clock();
    const Executed done = clock.ExecuteDue(kExecutionTime);
    m_executed += done.instalments;
    if (m_executed != 0 && !clock.HasDue()) {
        m_events.say("Clock " + RecordDate(clock.Today()) + ": " + std::to_string(m_executed)
                     + (m_executed == 1 ? " instalment executed" : " instalments executed"));
        m_executed = 0;
    }
    if (!done.fault.empty()) m_events.say(done.fault);
}

bool ServerLink::IsIdle() const {
    if (!m_client) return true;
    return m_client->State() == LinkState::connected && !m_client->Server().hasDue && !HasDue()
           && m_client->Waiting() == 0;
}

std::string ServerLink::Date() const {
    const std::uint32_t number = m_client ? m_client->Server().date : 0;
    return number == 0 ? std::string() : RecordDate(DateOf(number));
}

std::string ServerLink::LatestRegistration() const {
    if (!m_server || m_server->Serving().Held().All().empty()) return {};
    return std::string(m_server->Serving().Held().All().back().Number());
}

void ServerLink::Command(const std::string& line, std::function<void(const Told&)> told) {
    if (m_client)
        m_client->Command(line, std::move(told));
    else
        told({false, kNoServer});
}

} // namespace vesk

#include "host/terminal/window/EmbeddedLink.h"

#include "host/files/Files.h"
#include "host/server/RxHub.h"
#include "host/server/ServerConfig.h"
#include "host/server/sample/MarketOfServer.h"
#include "host/server/schedule/Schedule.h"
#include "host/terminal/window/Encoding.h"

#include <windows.h>

namespace vesk {
namespace {

constexpr const char* kNoServer = "There is no trading server";

// Of one pump; what waits to be delivered goes first.
constexpr std::chrono::milliseconds kExecutionTime{8};
constexpr std::size_t kMostWaiting = 2000;

} // namespace

EmbeddedLink::EmbeddedLink(const TerminalState& state, const std::string& journalFile, LinkEvents events,
                           std::vector<std::string>& notes)
    : m_state(state), m_user{state.config.loginId, state.config.peerIdA, state.config.peerIdB},
      m_events(std::move(events)) {
    ConfigResult config = LoadServerConfig(state.dataFolder + "/server.json");
    if (!config.config) notes.push_back(config.error + "; the server runs with its usual settings");
    JournalOpening opening = Journal::Open(PathOf(journalFile));
    if (!opening.warning.empty()) notes.push_back(ForScreen(opening.warning));
    if (opening.journal)
        StartServer(std::move(opening), config.config.value_or(ServerConfig{}), notes);
    else
        notes.push_back(ForScreen(opening.error) + "; there is no trading server");
}

// The hub works on the server to its end.
EmbeddedLink::~EmbeddedLink() {
    m_hub.reset();
}

void EmbeddedLink::StartServer(JournalOpening opening, ServerConfig config, std::vector<std::string>& notes) {
    m_journal = std::move(opening.journal);
    config.nonTrading = DatesOf(m_state.calendar.Dates());
    m_server = std::make_unique<Server>(std::move(config), *m_journal, opening.records, SystemClock());
    m_server->SetPrices(PricesOf(m_state.master));
    m_server->SetClients(ClientsOf(m_state.clients));
    if (!m_server->ReplayError().empty()) notes.push_back(m_server->ReplayError());
    const std::size_t records = opening.records.size();
    opening.records.clear();
    opening.text.reset(); // the server has read it, and it may be large
    if (std::string note = m_server->CompactWhenStale(); !note.empty()) notes.push_back(std::move(note));
    m_commands.emplace(*m_server, SampleMarketOf(m_state.master, m_state.clients));
    m_hub = std::make_unique<RxHub>(*m_server, m_user);
    notes.push_back("Trading server ready, " + std::to_string(records) + " journal records");
}

void EmbeddedLink::Pump() {
    if (!m_hub) return;
    m_hub->Pump(static_cast<std::int64_t>(GetTickCount64()));
    if (!m_server->HasDue() || m_hub->Waiting() > kMostWaiting) return;
    const Executed done = m_server->ExecuteDue(kExecutionTime);
    m_executed += done.instalments;
    if (m_executed != 0 && !m_server->HasDue()) {
        m_events.say("Clock " + Date() + ": " + std::to_string(m_executed)
                     + (m_executed == 1 ? " instalment executed" : " instalments executed"));
        m_executed = 0;
    }
    if (!done.fault.empty()) m_events.say(done.fault);
}

bool EmbeddedLink::IsIdle() const {
    return !m_hub || (!m_server->HasDue() && m_hub->Waiting() == 0);
}

LinkStatus EmbeddedLink::Status() const {
    if (!m_server) return {"No trading server", true};
    return {"Embedded server", false};
}

std::string EmbeddedLink::Date() const {
    return m_server ? RecordDate(m_server->Today()) : std::string();
}

std::vector<std::uint32_t> EmbeddedLink::RestrictedDates() const {
    std::vector<std::uint32_t> numbers;
    if (!m_server) return numbers;
    for (const auto date : m_server->Restricted().All())
        numbers.push_back(DateNumber(date));
    return numbers;
}

std::string EmbeddedLink::LatestRegistration() const {
    if (!m_server || m_server->Registrations().empty()) return {};
    return std::string(m_server->Registrations().back().Number());
}

void EmbeddedLink::Command(const std::string& line, std::function<void(const Told&)> told) {
    told(m_commands ? m_commands->Run(line, m_user, static_cast<std::int64_t>(GetTickCount64()))
                    : Told{false, kNoServer});
}

} // namespace vesk

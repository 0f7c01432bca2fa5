#include "host/terminal/window/ServerLink.h"

#include "host/server/Schedule.h"
#include "host/server/Server.h"
#include "host/server/ServerConfig.h"

#include <windows.h>

namespace vesk {
namespace {

constexpr const char* kOtherLogin = "DEALER02";
constexpr const char* kNoServer = "There is no trading server";

// Of one pump; what waits to be delivered goes first.
constexpr std::chrono::milliseconds kExecutionTime{8};
constexpr std::size_t kMostWaiting = 2000;

std::vector<std::chrono::year_month_day> DatesOf(std::span<const std::uint32_t> numbers) {
    std::vector<std::chrono::year_month_day> dates;
    for (const std::uint32_t number : numbers)
        dates.push_back(std::chrono::year(static_cast<int>(number / 10'000))
                        / std::chrono::month(number / 100 % 100) / std::chrono::day(number % 100));
    return dates;
}

} // namespace

ServerLink::ServerLink(const std::string& configFile, const std::string& journalFile, UserIdentity user,
                       std::span<const std::uint32_t> nonTrading, std::vector<std::string>& notes)
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
    ServerConfig settings = config.config.value_or(ServerConfig{});
    settings.nonTrading = DatesOf(nonTrading);
    m_server = std::make_unique<Server>(std::move(settings), *m_journal, opening.records, SystemClock());
    m_server->SetPrices([this](const Registration& registration) { return PriceOf(registration); });
    if (!m_server->ReplayError().empty()) notes.push_back(m_server->ReplayError());
    const std::size_t records = opening.records.size();
    opening.records.clear();
    opening.text.reset(); // the server has read it, and it may be large
    if (m_server->IsJournalStale()) {
        const std::string fault = m_server->CompactJournal();
        notes.push_back(fault.empty() ? "The journal is written anew without what was superseded" : fault);
    }
    m_hub = std::make_unique<RxHub>(*m_server, m_user);
    notes.push_back("Trading server ready, " + std::to_string(records) + " journal records");
}

RxControl* ServerLink::GetControl(int kind, CKeloRxNotifierBase* notifier) {
    return m_hub ? m_hub->Get(kind, notifier) : nullptr;
}

void ServerLink::DestroyControl(RxControl* control) {
    if (m_hub) m_hub->Destroy(control);
}

std::string ServerLink::Pump() {
    if (!m_hub) return {};
    m_hub->Pump(static_cast<std::int64_t>(GetTickCount64()));
    if (!m_server->HasDue() || m_hub->Waiting() > kMostWaiting) return {};
    const Executed done = m_server->ExecuteDue(kExecutionTime);
    m_executed += done.instalments;
    const bool isOver = m_executed != 0 && !m_server->HasDue();
    std::string told = done.fault;
    if (isOver)
        told = "Clock " + Date() + ": " + std::to_string(m_executed)
               + (m_executed == 1 ? " instalment" : " instalments") + " executed"
               + (done.fault.empty() ? "" : "; " + done.fault);
    if (isOver) m_executed = 0;
    return told;
}

std::string ServerLink::AdvanceClock(int days) {
    if (!m_server) return kNoServer;
    return m_server->AdvanceTo(std::chrono::sys_days(m_server->Today()) + std::chrono::days(days));
}

std::string ServerLink::AdvanceToNextInstalment() {
    return m_server ? m_server->AdvanceToNextInstalment() : kNoServer;
}

bool ServerLink::IsIdle() const {
    return !m_hub || (!m_server->HasDue() && m_hub->Waiting() == 0);
}

std::string ServerLink::Date() const {
    return m_server ? RecordDate(m_server->Today()) : std::string();
}

void ServerLink::UsePrices(const ScripMaster& master) {
    m_master = &master;
}

std::int64_t ServerLink::PriceOf(const Registration& registration) const {
    if (!m_master) return 0;
    const Scrip* scrip =
        m_master->ByTradingSymbol(registration.Text(kTagExchange), registration.Text(kTagTradingSymbol));
    return scrip ? scrip->lastPrice : 0;
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

std::string ServerLink::Execute(std::size_t count, const std::string& number) {
    if (!m_server) return kNoServer;
    const Registration* registration = m_server->Find(number);
    if (!registration) return "There is no registration " + number;
    const ExecutionPlan plan{m_server->OpenDays(*registration, count), PriceOf(*registration),
                             m_server->Config().fills.seed};
    if (plan.days.size() < count)
        return "There are no more than " + std::to_string(plan.days.size()) + " days for instalments of "
               + number;
    return m_server->Execute(*registration, plan);
}

void ServerLink::SetFault(const std::string& request, const RequestFault& fault) {
    if (m_server) m_server->Config().faults[request] = fault;
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

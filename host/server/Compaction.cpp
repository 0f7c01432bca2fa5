// A journal that keeps only what the server still holds.

#include "host/server/Server.h"

namespace vesk {
namespace {

// The orders of one registration with their trades, which stand in the same order. Which instalments they were
// is in the registration's progress by now.
void WriteOrders(const ExecutionHistory& history, const Journal::Sink& sink) {
    auto trade = history.trades.begin();
    for (const FieldRecord& order : history.orders) {
        ExchangeOrder whole{order, {}};
        const std::string_view number = order.Text(tag::orderNumber);
        while (trade != history.trades.end() && trade->Text(tag::orderNumber) == number)
            whole.trades.push_back(*trade++);
        sink(whole.Json());
    }
}

} // namespace

std::vector<std::string_view> Server::OrderIdentifiers() const {
    std::vector<std::string_view> identifiers(m_registrations.size());
    for (const auto& [identifier, place] : m_byRequestIdentifier)
        identifiers[place] = identifier;
    return identifiers;
}

bool Server::IsJournalStale() const {
    constexpr std::size_t leastSuperseded = 1000;
    const std::size_t held = 1 + m_market.restricted.Ranges().size() + m_registrations.size() + m_orderCount;
    if (!m_replayError.empty() || m_replayed < held + leastSuperseded) return false;
    const std::vector<std::string_view> identifiers = OrderIdentifiers();
    std::size_t needed = held;
    for (std::size_t place = 0; place < identifiers.size(); ++place)
        needed += m_registrations[place].Text(tag::orderId) != identifiers[place];
    return m_replayed > needed + leastSuperseded && m_replayed > 2 * needed;
}

std::string Server::CompactWhenStale() {
    if (!IsJournalStale()) return {};
    std::string fault = CompactJournal();
    return fault.empty() ? "The journal is written anew without what was superseded" : fault;
}

std::string Server::CompactJournal() {
    std::string error;
    if (!m_journal.Replace([this](const Journal::Sink& sink) { WriteAll(sink); }, error))
        return "The server's journal " + error;
    m_replayed = 0;
    return {};
}

void Server::WriteAll(const Journal::Sink& sink) const {
    // First, because a change of the days lets instalments of paused registrations lapse.
    sink(ClockRecord(m_aheadSeconds));
    for (const RestrictedRange& range : m_market.restricted.Ranges())
        sink(range.Json());
    const std::vector<std::string_view> identifiers = OrderIdentifiers();
    for (std::size_t place = 0; place < m_registrations.size(); ++place) {
        const Registration& registration = m_registrations[place];
        if (registration.Text(tag::orderId) != identifiers[place]) {
            // A cancellation has put its own there.
            Registration first = registration;
            first.Set(tag::orderId, identifiers[place]);
            sink(first.Json());
        }
        sink(registration.Json());
    }
    for (const Registration& registration : m_registrations)
        if (const auto found = m_executions.find(std::string(registration.Number()));
            found != m_executions.end())
            WriteOrders(found->second, sink);
}

} // namespace vesk

#include "plugin/doubts/BookComparison.h"

#include "plugin/base/Text.h"
#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/RecordedRow.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// An answer that has not ended by then does not end.
constexpr std::int64_t kLongestAnswer = 120; // seconds

// Whether the row shows what the change asked for.
bool Shows(const BookRow& row, const RecordedOrder& change) {
    const std::string_view request = change.SentText();
    if (request == kCancelSipOrder) return IsCancelled(row.status);
    if (request == kPauseSipOrder) return row.status == kPausedStatus;
    if (request == kResumeSipOrder) return row.isLive && row.status != kPausedStatus;
    const std::string_view periods = change.Text(RecordField::periods);
    return change.Text(RecordField::value) == row.asked[RecordField::value]
           && (periods.empty() || periods == row.asked[RecordField::periods]);
}

} // namespace

bool BookComparison::Begin() {
    if (IsUnderWay()) return true;
    m_session.record.Refresh();
    m_session.record.OnTime();
    const OrderLedger& ledger = m_session.record.Ledger();
    m_orders.clear();
    m_changes.clear();
    m_outcome = {};
    m_notBefore = 0;
    for (std::size_t i = 0; i < ledger.Orders().size(); ++i) {
        const auto place = static_cast<OrderPlace>(i);
        const RecordedOrder& order = ledger[place];
        if (order.State() != OrderState::inDoubt) continue;
        if (order.Text(RecordField::loginId) != m_session.identity.loginId) continue;
        m_orders.push_back(place);
        if (order.ChangesRegistration()) m_changes.emplace(order.Text(RecordField::registration), place);
        m_notBefore = std::max(m_notBefore, SecondsOf(order.SentAt()) + OrderRecord::kPatience);
    }
    if (m_orders.empty()) return false;
    // Also where the clock was set back since.
    m_notBefore = std::min(m_notBefore, m_session.record.Now() + OrderRecord::kPatience);
    m_phase = Phase::waiting;
    return true;
}

void BookComparison::OnTime(Pass pass, Notices& notices) {
    const std::int64_t now = m_session.record.Now();
    if (m_phase == Phase::waiting && now >= m_notBefore) return Ask(pass, notices, Phase::first);
    if (m_phase == Phase::first && m_asksNext) return Ask(pass, notices, Phase::second);
    if ((m_phase == Phase::first || m_phase == Phase::second) && now - m_askedAt > kLongestAnswer)
        End("The server did not answer in full.");
}

void BookComparison::Ask(Pass pass, Notices& notices, Phase phase) {
    m_phase = phase;
    m_asksNext = false;
    m_askedAt = m_session.record.Now();
    m_listed.clear();
    if (!SendGetSipOrders(pass, m_session, m_control(), notices)) End("The server could not be asked.");
}

void BookComparison::OnResponse(const Answer& answer) {
    if (m_phase != Phase::first && m_phase != Phase::second) return;
    if (answer.request != kGetSipOrders) return;
    if (answer.hasError) return End("The server refused to list the registrations.");
    if (FieldCount(answer.message, tag::queriedRow) > 0) return TakeRow(answer.message);
    // What is no row ends the answer.
    if (m_phase == Phase::first)
        m_asksNext = true;
    else
        End({});
}

void BookComparison::TakeRow(void* message) {
    sOrderinfo record;
    const bool installments = m_session.m_nSipOperationMode != 0;
    ReadOrderRow(message, installments, std::nullopt, record);
    if (record.Number().empty()) return;
    const RecordedRow row(record, installments);
    m_session.record.OnRow(row.Row());
    SettleChanges(row.Row());
    m_listed.emplace(record.Number());
}

void BookComparison::SettleChanges(const BookRow& row) {
    const auto [first, last] = m_changes.equal_range(std::string(row.registration));
    for (auto change = first; change != last; ++change) {
        const RecordedOrder& order = m_session.record.Ledger()[change->second];
        if (order.State() == OrderState::inDoubt && Shows(row, order))
            m_session.record.Tell(change->second, OrderEvent::found, "The book shows it.");
    }
}

void BookComparison::End(std::string fault) {
    m_session.record.Refresh(); // another terminal may know more by now
    const OrderLedger& ledger = m_session.record.Ledger();
    for (const OrderPlace place : m_orders) {
        const RecordedOrder& order = ledger[place];
        if (order.State() == OrderState::done) ++m_outcome.found;
        if (order.State() != OrderState::inDoubt) continue;
        // Of a registration that is not listed the book tells nothing, nor of orders with one identifier.
        const bool isListed = !order.ChangesRegistration()
                              || m_listed.contains(std::string(order.Text(RecordField::registration)));
        if (!fault.empty() || !isListed || !ledger.IsUnmistakable(place)) continue;
        m_session.record.Tell(place, OrderEvent::absent, "The book does not show it.");
        m_outcome.absent.push_back(place);
    }
    m_outcome.inDoubt = ledger.Count(OrderState::inDoubt);
    m_outcome.fault = std::move(fault);
    m_phase = Phase::over;
}

std::optional<BookComparison::Outcome> BookComparison::TakeOutcome() {
    if (m_phase != Phase::over) return std::nullopt;
    m_phase = Phase::none;
    return std::exchange(m_outcome, {});
}

} // namespace planfold

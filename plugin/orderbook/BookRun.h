// The same request for many registrations: sent in portions, so that the window keeps painting and the dealer
// can stop, and counted to its last answer.
#pragma once

#include "plugin/base/Notices.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/record/OrderLedger.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

enum class RunKind { cancel, pause, resume, modify };

class BookRun {
public:
    struct Row {
        RecordId record;
        std::string number;
        std::string client;
        OrderState state = OrderState::notSent; // of its request
        std::string refusal{};                  // the server's words and code
    };

    // `reason` is that of a cancellation.
    BookRun(RunKind kind, std::vector<Row> rows, std::string reason)
        : m_kind(kind), m_rows(std::move(rows)), m_reason(std::move(reason)) {}

    RunKind Kind() const { return m_kind; }
    const std::string& Reason() const { return m_reason; }
    std::span<const Row> Rows() const { return m_rows; }
    std::size_t Total() const { return m_rows.size(); }
    std::size_t Tried() const { return m_next; }
    bool AllTried() const { return m_stopped || m_next == m_rows.size(); }
    bool Stopped() const { return m_stopped; }
    void Stop() { m_stopped = m_next < m_rows.size(); }
    // Of every request that was sent it is known what came of it, as far as it can be.
    bool IsOver() const { return AllTried() && Count(OrderState::sent) == 0; }

    // The next rows are on the disk as sent, with these places in the order record.
    void Enter(std::span<const OrderPlace> places);
    // The next of them; only while not all are tried.
    void CountTried() { ++m_next; }
    // What the order record says of a place now; nothing when it is none of this run's.
    void Settle(OrderPlace place, const RecordedOrder& order);
    bool Has(OrderPlace place) const { return m_byPlace.contains(place); }
    // The one that has waited longest for its answer; kNoOrder when none waits.
    OrderPlace FirstWaiting();
    std::size_t Count(OrderState state) const;
    // The places of those that nobody answered.
    std::vector<OrderPlace> InDoubt() const;

    // Takes the texts of what could not be sent.
    Notices& Failures() { return m_failures; }
    // A text that is laid down for the answer to a row.
    void TellDone(std::string text) { m_done.push_back(std::move(text)); }

    // What became of it: the texts of its answers, what could not be sent, the numbers and the refusals. Empty
    // where the one text of the only row says it all. `isRecorded`: the orders of the day have every row.
    std::string Summary(bool isRecorded) const;
    // While it is under way.
    std::string Progress() const;

private:
    bool IsPlain() const;
    std::string Numbers() const;
    std::string Refusals() const;

    RunKind m_kind;
    std::vector<Row> m_rows;
    std::string m_reason;
    std::unordered_map<OrderPlace, std::size_t> m_byPlace; // rows
    std::vector<OrderPlace> m_places;                      // of the first rows
    std::size_t m_next = 0;
    std::size_t m_firstWaiting = 0; // none before it waits
    std::size_t m_sent = 0;         // and not answered
    KeptTexts m_failures;
    std::vector<std::string> m_done;
    bool m_stopped = false;
};

// "SIP7 C001: The registration is another user's (code 105)"
std::string DescribeRefused(const BookRun::Row& row);

} // namespace planfold

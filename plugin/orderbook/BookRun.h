// The same request for many registrations: sent in portions, so that the window keeps painting and the dealer
// can stop, with true numbers of what was sent and what came of it.
#pragma once

#include "plugin/base/Notices.h"
#include "plugin/orderbook/OrderCache.h"

#include <algorithm>
#include <string>
#include <vector>

namespace planfold {

enum class RunKind { cancel, pause, resume };

class BookRun {
public:
    BookRun(RunKind kind, std::vector<RecordId> records) : m_kind(kind), m_records(std::move(records)) {}

    RunKind Kind() const { return m_kind; }
    std::size_t Total() const { return m_records.size(); }
    std::size_t Tried() const { return m_next; }
    bool AllTried() const { return m_stopped || m_next == m_records.size(); }
    bool Stopped() const { return m_stopped; }
    void Stop() { m_stopped = m_next < m_records.size(); }

    // At most so many of those that are not tried.
    std::vector<RecordId> Next(std::size_t most) const {
        const auto from = m_records.begin() + static_cast<std::ptrdiff_t>(m_next);
        return {from, from + static_cast<std::ptrdiff_t>(std::min(most, m_records.size() - m_next))};
    }
    // The next of them; only while not all are tried.
    void CountTried() { ++m_next; }
    void CountSent() { ++m_sent; }
    // Takes the texts of what could not be sent.
    Notices& Failures() { return m_failures; }
    std::string FailureTexts() const { return m_failures.Text(); }
    // An answer to one of the sent requests.
    void CountAnswer(bool refused) { ++(refused ? m_refused : m_confirmed); }
    bool AllAnswered() const { return m_confirmed + m_refused >= m_sent; }

    // What became of it in numbers.
    std::string Summary() const;
    // While it is under way.
    std::string Progress() const;

private:
    RunKind m_kind;
    std::vector<RecordId> m_records;
    std::size_t m_next = 0;
    std::size_t m_sent = 0;
    std::size_t m_confirmed = 0;
    std::size_t m_refused = 0;
    KeptTexts m_failures;
    bool m_stopped = false;
};

} // namespace planfold

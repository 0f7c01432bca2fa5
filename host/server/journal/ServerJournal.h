// What a server writes of its changes, each on the disk before it is answered.
//
// Thread: the server's. Lifetime: the journal outlives it.
#pragma once

#include "host/server/journal/Journal.h"

#include <cstddef>
#include <string>
#include <utility>

namespace vesk {

class ServerJournal {
public:
    explicit ServerJournal(Journal& journal) : m_journal(journal) {}

    void EndReplay(std::size_t records) { m_replayed = records; }
    // Nothing is written any more: what the record says would be lost.
    void FailReplay(std::size_t record) {
        m_replayError = "journal record " + std::to_string(record) + " is not one this server knows";
    }
    const std::string& ReplayError() const { return m_replayError; }

    // Why the records are not on the disk; empty when they are.
    template <class Records>
    std::string Write(const Records& records) {
        if (!m_replayError.empty()) return m_replayError;
        std::string error;
        if (!m_journal.Append(records, error)) return "The server's journal " + error;
        ++m_writes;
        return {};
    }
    // How often it took something.
    std::size_t Writes() const { return m_writes; }

    // Whether so few records would do, of many that were replayed.
    bool IsStale(std::size_t needed) const {
        constexpr std::size_t leastSuperseded = 1000;
        return m_replayError.empty() && m_replayed > needed + leastSuperseded && m_replayed > 2 * needed;
    }
    // Writes the journal anew with what `write` hands to its sink. The answer is why it could not.
    std::string Replace(const std::function<void(const Journal::Sink&)>& write) {
        std::string error;
        if (!m_journal.Replace(write, error)) return "The server's journal " + error;
        m_replayed = 0;
        return {};
    }

private:
    Journal& m_journal;
    std::size_t m_replayed = 0; // records
    std::size_t m_writes = 0;
    std::string m_replayError;
};

} // namespace vesk

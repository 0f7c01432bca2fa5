// What a server writes of its changes, each on the disk before it is answered.
//
// Changes that are held are written together: they count before they are on the disk, and nobody hears of them
// until then. After a flush that failed each is again on the disk before it counts, until the journal takes
// one.
//
// Thread: the server's. Lifetime: the journal outlives it.
#pragma once

#include "host/server/journal/Journal.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

class ServerJournal {
public:
    explicit ServerJournal(Journal& journal) : m_journal(journal) {}

    void EndReplay(std::size_t records) { m_records = records; }
    // Nothing is written any more: what the record says would be lost.
    void FailReplay(std::size_t record) {
        FailReplay("journal record " + std::to_string(record) + " is not one this server knows");
    }
    void FailReplay(std::string error) { m_replayError = std::move(error); }
    // Which record could not be read; empty when all is well.
    const std::string& ReplayError() const { return m_replayError; }

    void Hold() { m_isHeld = true; }
    // Ends that. Why what was written meanwhile is not on the disk, and counts no more.
    std::string Release();
    // Until it is allowed again, with an empty text.
    void Refuse(std::string fault) { m_refusal = std::move(fault); }

    // Why the records are not in the journal; empty when they are.
    template <class Records>
    std::string Write(const Records& records) {
        JournalBatch batch;
        batch.Add(records);
        return Write(batch);
    }
    std::string Write(const JournalBatch& records);
    std::size_t Written() const { return m_written; } // records, those that are held too
    // How often it took something.
    std::size_t Writes() const { return m_writes; }

    // Whether so few records would do, of many that it has. A start reads them all, so a third is many.
    bool IsStale(std::size_t needed) const {
        constexpr std::size_t leastSuperseded = 1000;
        return m_replayError.empty() && m_records > needed + std::max(leastSuperseded, needed / 2);
    }
    // It has about so many from now on.
    void SetRecords(std::size_t records) { m_records = records; }
    Journal& File() { return m_journal; }

    // How long each flush took since the last call, in milliseconds.
    std::vector<double> TakeFlushTimes() { return std::exchange(m_flushTimes, {}); }

private:
    std::string Flush();

    Journal& m_journal;
    bool m_isHeld = false;
    bool m_hasFailed = false; // the last flush
    std::string m_refusal;
    std::string m_lost;        // why records that were held are not on the disk
    std::size_t m_records = 0; // superseded ones too
    std::size_t m_written = 0;
    std::size_t m_writes = 0;
    std::string m_replayError;
    std::vector<double> m_flushTimes;
};

} // namespace vesk

#include "host/server/journal/ServerJournal.h"

#include <chrono>

namespace vesk {
namespace {

constexpr std::size_t kMostHeld = std::size_t{4} << 20; // bytes, before a flush that nobody waits for
constexpr std::size_t kMostFlushTimes = 1'000'000;

} // namespace

std::string ServerJournal::Write(const JournalBatch& records) {
    for (const std::string* fault : {&m_replayError, &m_refusal, &m_lost})
        if (!fault->empty()) return *fault;
    std::string error;
    if (!m_journal.Add(records, error)) return "The server's journal " + error;
    m_records += records.Size();
    m_written += records.Size();
    if (m_isHeld && !m_hasFailed) {
        if (m_journal.Waiting() > kMostHeld) m_lost = Flush();
        return m_lost;
    }
    return Flush();
}

std::string ServerJournal::Release() {
    m_isHeld = false;
    return m_lost.empty() ? Flush() : std::exchange(m_lost, {});
}

std::string ServerJournal::Flush() {
    if (m_journal.Waiting() == 0) return {};
    const auto start = std::chrono::steady_clock::now();
    std::string error;
    m_hasFailed = !m_journal.Flush(error);
    if (m_hasFailed) return "The server's journal " + error;
    ++m_writes;
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (m_flushTimes.size() < kMostFlushTimes) m_flushTimes.push_back(took.count());
    return {};
}

} // namespace vesk

#include "host/server/JournalUpkeep.h"

namespace vesk {

bool JournalUpkeep::IsStale() const {
    return m_journal.IsStale(m_clock.RecordCount() + m_registrations.Size() + m_registrations.OrderCount()
                             + m_registrations.Changes().Size());
}

std::string JournalUpkeep::RenewWhenStale(std::chrono::milliseconds time) {
    if (!m_renewal) {
        if (!IsStale()) return {};
        m_renewal.emplace(m_journal, m_clock, m_registrations);
    }
    m_renewal->GoOn(time);
    if (!m_renewal->IsOver()) return {};
    const std::string error = m_renewal->Error();
    m_renewal.reset();
    if (error.empty()) return "The journal is written anew without what was superseded";
    m_journal.SetRecords(0); // not at once again
    return "The server's journal " + error;
}

std::string JournalUpkeep::Renew() {
    m_renewal.emplace(m_journal, m_clock, m_registrations);
    while (!m_renewal->IsOver())
        m_renewal->GoOn(std::chrono::seconds(1));
    const std::string error = m_renewal->Error();
    m_renewal.reset();
    return error.empty() ? "" : "The server's journal " + error;
}

} // namespace vesk

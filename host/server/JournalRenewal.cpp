#include "host/server/JournalRenewal.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr std::size_t kAtOnce = 256; // registrations

} // namespace

JournalRenewal::JournalRenewal(ServerJournal& journal, const Clockwork& clock, Registrations& registrations)
    : m_journal(journal), m_registrations(registrations), m_end(registrations.Size()),
      m_sink([this](std::string_view content) {
          if (m_error.empty() && !m_journal.File().Copy(content, m_error) && m_error.empty())
              m_error = "is not copied";
          ++m_records;
      }) {
    if (!m_journal.File().BeginCopy(m_error)) return;
    m_registrations.BeginNoting();
    clock.WriteTo(m_sink);
    // In front, because the registrations' own records tell less.
    m_registrations.Changes().WriteTo(m_sink);
}

JournalRenewal::~JournalRenewal() {
    m_registrations.EndNoting();
    m_journal.File().DropCopy();
}

void JournalRenewal::GoOn(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!IsOver()) {
        Step();
        if (std::chrono::steady_clock::now() >= end) break;
    }
}

void JournalRenewal::Step() {
    const std::size_t registrations = std::min(m_end, m_registration + kAtOnce);
    if (m_registration < m_end) {
        while (m_registration < registrations)
            m_sink(m_registrations.At(m_registration++).Json());
        return;
    }
    const std::size_t histories = std::min(m_end, m_history + kAtOnce);
    if (m_history < m_end) {
        while (m_history < histories)
            m_registrations.WriteOrders(m_registrations.At(m_history++), m_sink);
        return;
    }
    if (m_journal.File().EndCopy(m_isOver, m_error) && m_isOver) m_journal.SetRecords(m_records);
}

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

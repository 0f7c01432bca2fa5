// Writes the server's journal anew with what the server holds, a little at a time, while the server goes on.
//
// A record may be copied as it is later than when the renewal began, and what has changed it is behind it once
// more: a replay then takes the change again, and comes to the same.
//
// Thread: the server's, and never while changes are held. Lifetime: what the constructor takes outlives it.
#pragma once

#include "host/server/Clockwork.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace vesk {

class JournalRenewal {
public:
    JournalRenewal(ServerJournal& journal, const Clockwork& clock, Registrations& registrations);
    JournalRenewal(const JournalRenewal&) = delete;
    JournalRenewal& operator=(const JournalRenewal&) = delete;
    ~JournalRenewal();

    // Goes on for about so long; at least a step.
    void GoOn(std::chrono::milliseconds time);
    bool IsOver() const { return m_isOver || !m_error.empty(); }
    // Why the journal is left as it was; empty when it is not.
    const std::string& Error() const { return m_error; }

private:
    void Step();

    ServerJournal& m_journal;
    Registrations& m_registrations;
    const std::size_t m_end;                       // registrations that were there
    std::size_t m_registration = 0, m_history = 0; // the next ones
    std::size_t m_records = 0;
    bool m_isOver = false;
    std::string m_error;
    const Journal::Sink m_sink;
};

// Has that done when much of the journal is superseded.
class JournalUpkeep {
public:
    JournalUpkeep(ServerJournal& journal, const Clockwork& clock, Registrations& registrations)
        : m_journal(journal), m_clock(clock), m_registrations(registrations) {}

    // Whether many of the journal's records are superseded.
    bool IsStale() const;
    // Writes it anew with what the server holds. Why it could not; empty when that is done.
    std::string Renew();
    // Begins that when it is stale, and goes on with it for about so long; never while changes are held. What
    // became of it, for the log; empty until it is over.
    std::string RenewWhenStale(std::chrono::milliseconds time);
    bool IsUnderWay() const { return m_renewal.has_value(); }
    // What the server holds is about to be others: a renewal begins anew.
    void Forget() { m_renewal.reset(); }

private:
    ServerJournal& m_journal;
    const Clockwork& m_clock;
    Registrations& m_registrations;
    std::optional<JournalRenewal> m_renewal{};
};

} // namespace vesk

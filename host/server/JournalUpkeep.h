// Has the journal written anew when much of it is superseded.
//
// Thread: the server's. Lifetime: what the constructor takes outlives it.
#pragma once

#include "host/server/JournalRenewal.h"

#include <chrono>
#include <optional>
#include <string>

namespace vesk {

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

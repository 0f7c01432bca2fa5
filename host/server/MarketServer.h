// A trading server over a journal and the market that the terminal's files describe, with the commands for who
// runs it.
//
// Thread: one. Lifetime: scrips and clients outlive it.
#pragma once

#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/market/TradingCalendar.h"
#include "host/server/ServerCommands.h"

#include <memory>
#include <string>

namespace vesk {

class MarketServer {
public:
    // The opening has a journal. Whether the server could read it all, the ReplayError of its journal says.
    MarketServer(JournalOpening&& opening, ServerConfig config, const ScripMaster& master,
                 const ClientList& clients, const TradingCalendar& calendar, bool hasConnections);

    Server& Serving() { return m_server; }
    const Server& Serving() const { return m_server; }
    ServerCommands& Commands() { return m_commands; }
    // How many were replayed.
    std::size_t Records() const { return m_records; }

private:
    std::unique_ptr<Journal> m_journal;
    std::size_t m_records;
    Server m_server;
    ServerCommands m_commands;
};

} // namespace vesk

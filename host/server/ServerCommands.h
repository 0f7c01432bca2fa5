// What the one who runs the server tells it, a line of words each:
//
//   clock next | clock DAYS | clock 2027-03-05
//   fill COUNT | other COUNT | execute COUNT [NUMBER]
//   fault REQUEST KIND [VALUE]
//
// Thread:  as the server. Lifetime: the server outlives it.
// Failure: a line that cannot be done is told, with the reason; nothing is thrown for it.
#pragma once

#include "host/server/Server.h"
#include "host/server/sample/SampleOrders.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// What became of a command; the text is for the log.
struct Told {
    bool isDone = false;
    std::string text{};
};

class ServerCommands {
public:
    // `market` is what made-up orders are for. Without connections the fault that cuts them is refused.
    ServerCommands(Server& server, SampleMarket market, bool hasConnections = false)
        : m_server(server), m_market(std::move(market)), m_hasConnections(hasConnections) {}

    // `user` is whose registrations a filling brings, and whose firm another session trades beside.
    Told Run(std::string_view line, const UserIdentity& user, std::int64_t nowMs);

private:
    struct Call {
        std::span<const std::string_view> words; // behind the verb
        const UserIdentity& user;
        std::int64_t nowMs;
    };
    struct Verb;
    static const Verb kVerbs[];

    Told MoveClock(const Call& call);
    Told Fill(const Call& call);
    Told PlaceOtherOrders(const Call& call);
    Told Execute(const Call& call);
    Told SetFault(const Call& call);

    bool HasMarket() const { return !m_market.accounts.empty() && !m_market.scrips.empty(); }

    Server& m_server;
    SampleMarket m_market;
    bool m_hasConnections;
};

} // namespace vesk

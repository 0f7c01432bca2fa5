// The trading server for several terminals at once: connections of this machine, a session each.
//
// What all of them asked for is done and put on the disk together, and then answered.
//
// Everything happens inside Turn, on the caller's thread, and nothing in it waits for a terminal: one that
// reads slowly is not made anything for while its output is full, and ends when that lasts.
//
// When there is no place for a new one, a stranger goes for it, and else who wants nothing for a while. No
// login has more than its number of places: there one of its own goes that wants nothing, or the new one is
// refused.
//
// What a terminal has asked for is done although its connection is over.
//
// Lifetime: server and commands outlive it. Failure: a fault of one connection ends that connection, with a
// line in the log.
#pragma once

#include "host/server/net/ServerSession.h"
#include "host/server/net/Socket.h"

#include <functional>
#include <list>
#include <string>

namespace vesk {

// The milliseconds of a clock that never goes back.
std::int64_t SteadyMs();

class NetServer {
public:
    using Log = std::function<void(const std::string& line)>;

    NetServer(Server& server, ServerCommands& commands, Log log, SessionLimits limits = {});
    NetServer(const NetServer&) = delete;
    NetServer& operator=(const NetServer&) = delete;

    // Port 0 is the system's choice. Why it cannot; empty when it does.
    std::string Listen(std::uint16_t port);
    std::uint16_t Port() const { return m_listener.Port(); }
    // What has gone through all connections.
    Traffic Carried() const { return m_carried; }
    std::size_t Connections() const { return m_connections.size(); }

    // Whether a terminal that takes its updates has many to take: what makes more of them can wait for it.
    bool IsBehind() const;

    // Takes, does and sends what there is, after waiting for something at most so long. `beside` is done with
    // what was asked for, and put on the disk with it.
    void Turn(int timeoutMs, const std::function<void()>& beside = {});
    // Before its end: does at once what terminals that are gone had asked for. The others ask the next server.
    void FinishRest();

private:
    struct Connection {
        Connection(Socket taken, const NetServer& net)
            : socket(std::move(taken)), session(net.m_server, net.m_commands, net.m_limits) {}

        Socket socket;
        ServerSession session;
        bool isGone = false; // the socket is of no use any more
    };

    bool AnyHasWork(std::int64_t nowMs) const;
    int PauseMs(int longestMs) const;
    // Whose place a new one may have, of one login or of all; null when all are needed.
    Connection* FindYielding(std::string_view loginId = {});
    bool HasPlace() const;
    // Makes place for another session of the login. False when it can have none.
    bool Admits(std::string_view loginId);
    void Accept();
    // A fault ends the connection.
    template <class Work>
    void Do(Connection& connection, Work work);
    void Exchange(Connection& connection, const SocketEvents& came);
    void Answer(Connection& connection, const std::string& fault);
    void Receive(Connection& connection);
    // What a terminal that takes no answers any more has sent before.
    void ReceiveRest(Connection& connection);
    void Send(Connection& connection);
    void DropEnded();
    void NoteEnd(const ServerSession& session);
    void Note(const std::string& line);

    Server& m_server;
    ServerCommands& m_commands;
    Log m_log;
    std::int64_t m_strangerNotedMs = 0; // last
    std::size_t m_unnoted = 0;          // strangers since
    SessionLimits m_limits;
    Socket m_listener;
    std::list<Connection> m_connections;
    Traffic m_carried;
};

} // namespace vesk

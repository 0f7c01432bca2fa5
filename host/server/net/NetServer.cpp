#include "host/server/net/NetServer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <limits>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostConnections = 256;
constexpr std::size_t kMostAccepted = 64; // of a turn: those that are there come first

} // namespace

std::int64_t SteadyMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

NetServer::NetServer(Server& server, ServerCommands& commands, Log log, SessionLimits limits)
    : m_server(server), m_commands(commands), m_log(std::move(log)), m_limits(std::move(limits)) {
    m_limits.admits = [this](std::string_view loginId) { return Admits(loginId); };
}

std::string NetServer::Listen(std::uint16_t port) {
    std::string error;
    m_listener = Socket::Listen(port, error);
    return error;
}

void NetServer::Turn(int timeoutMs, const std::function<void()>& beside) {
    std::vector<SocketEvents> waiting{{&m_listener, HasPlace() || FindYielding()}};
    for (Connection& connection : m_connections)
        if (connection.socket)
            waiting.push_back(
                {&connection.socket, connection.session.TakesInput(), !connection.session.Output().IsEmpty()});
    Wait(waiting, PauseMs(timeoutMs));
    auto came = waiting.begin() + 1;
    for (Connection& connection : m_connections)
        Exchange(connection, connection.socket ? *came++ : SocketEvents{&connection.socket});
    m_server.Hold();
    for (Connection& connection : m_connections)
        Do(connection, [&] { connection.session.Handle(SteadyMs()); });
    if (beside) beside();
    const std::string fault = m_server.Release();
    for (Connection& connection : m_connections)
        Answer(connection, fault);
    DropEnded();
    if (waiting.front().canRead) Accept();
}

void NetServer::FinishRest() {
    constexpr std::int64_t whenever = std::numeric_limits<std::int64_t>::max();
    for (Connection& connection : m_connections)
        while (connection.isGone && connection.session.HasRest())
            connection.session.Pump(whenever);
}

// A request that is delayed is looked for every millisecond, from a little before.
int NetServer::PauseMs(int longestMs) const {
    const std::int64_t now = SteadyMs();
    if (AnyHasWork(now)) return 0;
    return AnyHasWork(now + longestMs) ? 1 : longestMs;
}

bool NetServer::AnyHasWork(std::int64_t nowMs) const {
    for (const Connection& connection : m_connections)
        if (connection.session.HasWork(nowMs)) return true;
    return false;
}

bool NetServer::IsBehind() const {
    return std::ranges::any_of(m_connections, [](const Connection& one) { return one.session.IsBehind(); });
}

bool NetServer::HasPlace() const {
    return m_connections.size() < kMostConnections;
}

// The oldest of those that yield most readily.
NetServer::Connection* NetServer::FindYielding(std::string_view loginId) {
    const std::int64_t now = SteadyMs();
    const auto yields = [&](const Connection& one) {
        return loginId.empty() || one.session.IsOf(loginId) ? one.session.Yields(now) : Yielding::never;
    };
    const auto found = std::ranges::max_element(m_connections, {}, yields);
    return found == m_connections.end() || yields(*found) == Yielding::never ? nullptr : &*found;
}

bool NetServer::Admits(std::string_view loginId) {
    const auto isOf = [&](const Connection& one) { return one.session.IsOf(loginId); };
    const auto sessions = static_cast<std::size_t>(std::ranges::count_if(m_connections, isOf));
    if (sessions < m_limits.loginSessions) return true;
    Connection* yielding = FindYielding(loginId);
    // It is dropped at the end of the turn.
    if (yielding) yielding->session.YieldPlace();
    return yielding != nullptr;
}

void NetServer::Accept() {
    for (std::size_t i = 0; i < kMostAccepted; ++i) {
        Connection* yielding = HasPlace() ? nullptr : FindYielding();
        if (!HasPlace() && !yielding) return;
        Socket socket = m_listener.Accept();
        if (!socket) return;
        if (yielding) {
            yielding->session.YieldPlace();
            Send(*yielding);
            DropEnded();
        }
        m_connections.emplace_back(std::move(socket), *this);
    }
}

template <class Work>
void NetServer::Do(Connection& connection, Work work) {
    try {
        work();
    } catch (const std::exception& fault) {
        Note(connection.session.Name() + ": " + fault.what());
        connection.isGone = true;
    }
}

void NetServer::Exchange(Connection& connection, const SocketEvents& came) {
    Do(connection, [&] {
        if (came.canRead) Receive(connection);
        // Before it is judged by what it has not taken: the server itself may have been busy.
        if (came.canWrite) Send(connection);
    });
}

void NetServer::Answer(Connection& connection, const std::string& fault) {
    Do(connection, [&] {
        connection.session.Deliver(fault);
        const Traffic traffic = connection.session.TakeTraffic();
        m_carried.requests += traffic.requests;
        m_carried.updates += traffic.updates;
        if (!connection.session.Output().IsEmpty()) Send(connection);
        if (connection.isGone && connection.socket) ReceiveRest(connection);
    });
}

void NetServer::Receive(Connection& connection) {
    std::array<char, 65536> part;
    std::size_t got = 0;
    const Transfer transfer = connection.socket.Receive(part, got);
    if (transfer == Transfer::some) connection.session.Take({part.data(), got}, SteadyMs());
    if (transfer == Transfer::ended) connection.isGone = true;
}

void NetServer::ReceiveRest(Connection& connection) {
    constexpr std::size_t mostParts = 256;
    std::array<char, 65536> part;
    std::size_t got = 0;
    for (std::size_t i = 0; i < mostParts && connection.socket.Receive(part, got) == Transfer::some; ++i)
        connection.session.Take({part.data(), got}, SteadyMs());
}

void NetServer::Send(Connection& connection) {
    ByteQueue& output = connection.session.Output();
    std::string_view left = output.Bytes();
    Transfer transfer = Transfer::some;
    while (!left.empty() && transfer == Transfer::some)
        transfer = connection.socket.Send(left);
    output.Take(output.Size() - left.size());
    if (transfer == Transfer::ended) connection.isGone = true;
}

// Strangers come as fast as they can: they get a line a second.
void NetServer::NoteEnd(const ServerSession& session) {
    constexpr std::int64_t pauseMs = 1000;
    std::string line = session.Name() + " is cut off: " + session.EndReason();
    if (session.IsStranger()) {
        if (SteadyMs() - m_strangerNotedMs < pauseMs) return void(++m_unnoted);
        m_strangerNotedMs = SteadyMs();
        if (m_unnoted > 0) line += " (" + std::to_string(std::exchange(m_unnoted, 0)) + " others before)";
    }
    Note(line);
}

void NetServer::Note(const std::string& line) {
    m_log(Printable(line));
}

void NetServer::DropEnded() {
    for (auto at = m_connections.begin(); at != m_connections.end();) {
        ServerSession& session = at->session;
        if (session.HasEnded() && at->socket) NoteEnd(session);
        if (session.HasEnded() || at->isGone) {
            at->isGone = true;
            at->socket = {};
            session.Leave();
        }
        at = at->isGone && !session.HasRest() ? m_connections.erase(at) : std::next(at);
    }
}

} // namespace vesk

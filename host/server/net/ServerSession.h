// One terminal's connection as the server sees it, without its socket: bytes that came in, bytes to go out.
//
// It lets the terminal in and reads its frames; what the terminal wants is the TerminalWork's.
//
// Thread:  one. Lifetime: server and commands outlive the session.
// Failure: a terminal that breaks the protocol, or does not take what it subscribed to, ends its session:
//          EndReason says why.
#pragma once

#include "host/server/net/Logins.h"
#include "host/server/net/TerminalWork.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

struct SessionLimits {
    std::size_t outputBytes = std::size_t{256} * 1024; // from which on nothing more is made
    std::size_t streamBacklog = 20'000;                // updates that wait for room
    std::int64_t stalledMs = 30'000;                   // without room
    std::int64_t greetingMs = 10'000;                  // until it has said hello
    std::int64_t graceMs = 250;                        // for which a stranger need not yield to another,
    std::int64_t idleMs = 60'000;                      // and a terminal that wants nothing
    std::size_t requests = 4096;                       // and commands, that wait, before nothing more is read;
    std::size_t requestBytes = std::size_t{8} * 1024 * 1024; // of these
    std::size_t loginSessions = 32;                          // of one login at a time
    std::size_t turns = 64;                                  // of one pump,
    std::chrono::milliseconds pumpTime{60'000};              // and how long it begins another one
    Checksum checksum = Checksum::crc32;                     // of the frames, both ways
    const Logins* logins = nullptr;                          // who may come, and proves it; null: anybody
    bool takesCommands = true;
    // Whether the login may have another session; null: always.
    std::function<bool(std::string_view loginId)> admits{};

    // From so many updates on, a terminal is behind.
    std::size_t Backlog() const { return streamBacklog / 4; }
};

// Whose place a new terminal may have, the most readily given one last.
enum class Yielding { never, idle, stranger };

class ServerSession {
public:
    ServerSession(Server& server, ServerCommands& commands, const SessionLimits& limits);
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;
    ~ServerSession() = default;

    // `nowMs` never goes back.
    void Take(std::string_view bytes, std::int64_t nowMs);
    // Does a portion of what there is to do: all of the following.
    void Pump(std::int64_t nowMs);
    // Handles what is due while the server holds the changes.
    void Handle(std::int64_t nowMs);
    // What the server said when it released them; then the answers go out, and the rest.
    void Deliver(const std::string& fault);
    bool TakesInput() const;
    // Whether another pump would do something, as far as `nowMs`.
    bool HasWork(std::int64_t nowMs) const;
    // How much the terminal will hear of without having asked for it.
    std::size_t Waiting() const;
    // Whether many updates wait for it although it takes them at a good pace.
    bool IsBehind() const;
    // The bytes to be sent; the caller takes away what it has sent.
    ByteQueue& Output() { return m_output.Bytes(); }

    // Since the last call.
    Traffic TakeTraffic() { return m_work ? m_work->TakeTraffic() : Traffic(); }
    bool IsStranger() const { return !m_work; }
    bool IsOf(std::string_view loginId) const { return m_work && !HasEnded() && m_name == loginId; }
    // A stranger has not said, or not proved, who it is; an idle one neither asks nor is subscribed to
    // anything.
    Yielding Yields(std::int64_t nowMs) const;
    void YieldPlace() { m_output.Refuse("another terminal needs its place"); }

    // Its terminal is gone: nothing is said any more, but what was asked is still done, when it is due.
    void Leave();
    // Whether something that was asked still waits after that.
    bool HasRest() const { return m_work && m_work->Asked() > 0; }

    // After its end it takes nothing more, and what is in the output may still be sent.
    bool HasEnded() const { return m_output.HasEnded(); }
    const std::string& EndReason() const { return m_output.EndReason(); }
    const std::string& Name() const { return m_name; }

private:
    struct Step;
    static const Step kSteps[];

    template <class Said>
    void TakeAs(std::string_view payload);
    void On(const net::Hello& said);
    void On(const net::OpenControl& said);
    void On(const net::CloseControl& said);
    void On(net::ControlRequest&& said);
    void On(const net::Subscribe& said);
    void On(const net::Stop& said);
    void On(net::ServerCommand&& said);

    bool TakesRequests(std::int64_t nowMs) const;
    // Ends a terminal that does not keep up.
    void Judge();

    Server& m_server;
    ServerCommands& m_commands;
    SessionLimits m_limits;
    FrameReader m_reader;
    SessionOutput m_output;
    const std::string m_nonce; // empty: nothing is to be proved
    std::string m_name = "a terminal";
    std::map<std::uint32_t, std::uint32_t> m_controlKinds;
    std::int64_t m_nowMs = 0;
    std::int64_t m_roomAtMs = 0; // when a pump began with room last
    std::optional<std::int64_t> m_beganMs{};
    std::int64_t m_heardMs = 0;         // of it last
    std::optional<TerminalWork> m_work; // once the terminal has said who it is
};

} // namespace vesk

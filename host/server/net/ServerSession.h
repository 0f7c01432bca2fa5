// One terminal's connection as the server sees it, without its socket: bytes that came in, bytes to go out.
//
// Requests are handled in the order they are due. What a query asks for is made row by row as there is room in
// the output, after the updates told before, so a row never shows an older state than an update behind it.
//
// Thread:  one. Lifetime: server and commands outlive the session.
// Failure: a terminal that breaks the protocol, or does not take what it subscribed to, ends its session:
//          EndReason says why.
#pragma once

#include "host/server/ServerCommands.h"
#include "host/server/net/AskedQueue.h"
#include "host/server/net/Logins.h"
#include "host/server/net/Streams.h"

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
    std::size_t turns = 64;                                  // of one pump,
    std::chrono::milliseconds pumpTime{60'000};              // and how long it begins another one
    Checksum checksum = Checksum::crc32;                     // of the frames, both ways
    const Logins* logins = nullptr;                          // who may come, and proves it; null: anybody
    bool takesCommands = true;
};

// What has gone through.
struct Traffic {
    std::size_t requests = 0, updates = 0;
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
    bool IsBehind() const { return HasBacklog() && m_pace.isGood; }
    // The bytes to be sent; the caller takes away what it has sent.
    std::string& Output() { return m_output; }

    // Since the last call.
    Traffic TakeTraffic() { return std::exchange(m_traffic, {}); }
    bool IsStranger() const { return !m_streams; }
    // A stranger has not said, or not proved, who it is; an idle one neither asks nor is subscribed to
    // anything.
    Yielding Yields(std::int64_t nowMs) const;
    void YieldPlace() { Refuse("another terminal needs its place"); }

    // Its terminal is gone: nothing is said any more, but what was asked is still done, when it is due.
    void Leave();
    // Whether something that was asked still waits after that.
    bool HasRest() const { return m_streams && m_asked.Size() > 0; }

    // After its end it takes nothing more, and what is in the output may still be sent.
    bool HasEnded() const { return !m_endReason.empty(); }
    const std::string& EndReason() const { return m_endReason; }
    const std::string& Name() const { return m_name; }

private:
    struct RunningQuery {
        std::uint32_t control;
        std::uint64_t number;
        RowQuery rows;
    };
    // What the terminal hears of the server without asking.
    struct ToldState {
        std::chrono::year_month_day date{};
        bool hasDue = false;          // instalments to execute, or such that are not told of
        std::size_t restrictions = 0; // changes of them
        bool operator==(const ToldState&) const = default;
    };
    // What was asked, and is answered when it is on the disk.
    struct Handled {
        Asked asked;
        Reply reply{};
        Told told{};
        bool hasWritten = false;
    };
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

    bool IsProven(const net::Hello& hello) const;
    template <class Said>
    void Say(Said said);
    void Refuse(const std::string& text);
    void End(std::string reason);
    ToldState StateNow() const;
    // Tells the state when it differs from what was told.
    void TellState();
    bool HasRoom() const { return m_output.size() < m_limits.outputBytes; }
    bool TakesRequests(std::int64_t nowMs) const;
    bool HasToSay() const;
    void Handle(Handled& one, const net::ControlRequest& request);
    void Handle(Handled& one, const net::ServerCommand& command);
    void Answer(Handled& one, const net::ControlRequest& request, const std::string& fault);
    void Answer(Handled& one, const net::ServerCommand& command, const std::string& fault);
    std::string SentAs(const net::ControlRequest& request) const {
        return m_terminal + "-" + std::to_string(request.number);
    }
    bool DeliverOnce();
    void NextRow();
    bool HasBacklog() const { return m_streams && m_streams->Waiting() > m_limits.streamBacklog / 4; }
    // Ends a terminal that does not keep up.
    void Judge();

    Server& m_server;
    ServerCommands& m_commands;
    SessionLimits m_limits;
    FrameReader m_reader;
    std::string m_output;
    const std::string m_nonce; // empty: nothing is to be proved
    std::string m_name = "a terminal";
    std::string m_endReason;
    bool m_hasLeft = false;
    UserIdentity m_user;
    std::string m_terminal;
    std::optional<Streams> m_streams; // once the terminal has said who it is
    std::map<std::uint32_t, std::uint32_t> m_controlKinds;
    AskedQueue m_asked;
    std::vector<Handled> m_handled;
    std::deque<RunningQuery> m_queries;
    ToldState m_toldState;
    std::int64_t m_nowMs = 0;
    std::int64_t m_roomAtMs = 0; // when a pump began with room last
    std::optional<std::int64_t> m_beganMs{};
    std::int64_t m_heardMs = 0; // of it last
    std::size_t m_streamed = 0; // updates that went out
    Traffic m_traffic;
    // How it takes a backlog, judged again and again.
    struct {
        std::int64_t sinceMs = 0;
        std::size_t streamed = 0; // by then
        bool isGood = true;
    } m_pace;
};

} // namespace vesk

// What a terminal that has said who it is wants of the server, and what became of it: requests and commands,
// the rows of its queries, its subscriptions, and the server's state.
//
// Requests are handled in the order they are due. What a query asks for is made row by row as there is room in
// the output, after the updates told before, so a row never shows an older state than an update behind it.
//
// Thread: the session's. Lifetime: server, commands and output outlive it.
#pragma once

#include "host/server/ServerCommands.h"
#include "host/server/net/AskedQueue.h"
#include "host/server/net/SessionOutput.h"
#include "host/server/net/Streams.h"

#include <cstdint>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

// What has gone through.
struct Traffic {
    std::size_t requests = 0, updates = 0;
};

class TerminalWork {
public:
    TerminalWork(Server& server, ServerCommands& commands, const net::Hello& hello, SessionOutput& output);

    // When it has been due for as long as the server's configuration delays it.
    void Ask(std::int64_t nowMs, net::ControlRequest&& request, std::string_view name);
    void Ask(std::int64_t nowMs, net::ServerCommand&& command) { m_asked.Add(nowMs, std::move(command)); }
    // A request still counts when nobody hears its answer; a query's rows are for nobody.
    void CloseControl(std::uint32_t control);
    vesk::Streams& Streams() { return m_streams; }
    const vesk::Streams& Streams() const { return m_streams; }
    // Only what was asked is still done.
    void Leave();

    bool IsDue(std::int64_t nowMs) const { return m_asked.IsDue(nowMs); }
    // The first that is due, while the server holds the changes.
    void HandleNext(std::int64_t nowMs);
    // What was handled; the fault is what the server said when it released the changes.
    void AnswerHandled(const std::string& fault);
    bool HasToSay() const;
    // All updates, and one row of a long query. False when there is nothing to say.
    bool SayNext();
    // When it differs from what was told.
    void TellState();

    // Requests and commands that are not handled, and their bytes.
    std::size_t Asked() const { return m_asked.Size(); }
    std::size_t AskedBytes() const { return m_asked.Bytes(); }
    // With them what makes rows and updates.
    std::size_t UnderWay() const { return Asked() + m_queries.size() + m_streams.CatchUps(); }
    // How much the terminal will hear of without having asked for it.
    std::size_t Unasked() const { return m_streams.Waiting() + m_streams.CatchUps(); }
    bool WantsNothing() const { return m_streams.Subscriptions() + UnderWay() + m_streams.Waiting() == 0; }

    // How it takes a backlog of so many updates, judged again and again.
    void JudgePace(std::int64_t nowMs, std::size_t backlog);
    bool IsAtGoodPace() const { return m_pace.isGood; }
    // Since the last call.
    Traffic TakeTraffic() { return std::exchange(m_traffic, {}); }

private:
    struct RunningQuery {
        std::uint32_t control;
        std::uint64_t number;
        RowQuery rows;
    };
    // What the terminal hears of the server without asking.
    struct State {
        std::chrono::year_month_day date{};
        bool hasDue = false;          // instalments to execute, or such that are not told of
        std::size_t restrictions = 0; // changes of them
        bool operator==(const State&) const = default;
    };
    // What was asked, and is answered when it is on the disk.
    struct Handled {
        vesk::Asked asked;
        Reply reply{};
        Told told{};
        bool hasWritten = false;
    };

    void Handle(Handled& one, const net::ControlRequest& request, std::int64_t nowMs);
    void Handle(Handled& one, const net::ServerCommand& command, std::int64_t nowMs);
    void Answer(Handled& one, const net::ControlRequest& request, const std::string& fault);
    void Answer(Handled& one, const net::ServerCommand& command, const std::string& fault);
    std::string SentAs(const net::ControlRequest& request) const {
        return m_terminal + "-" + std::to_string(request.number);
    }
    void NextRow();
    State StateNow() const;

    Server& m_server;
    ServerCommands& m_commands;
    SessionOutput& m_output;
    const UserIdentity m_user;
    const std::string m_terminal;
    vesk::Streams m_streams;
    AskedQueue m_asked;
    std::vector<Handled> m_handled;
    std::deque<RunningQuery> m_queries;
    State m_toldState;
    std::size_t m_streamed = 0; // updates that went out
    Traffic m_traffic;
    struct {
        std::int64_t sinceMs = 0;
        std::size_t streamed = 0; // by then
        bool isGood = true;
    } m_pace;
};

} // namespace vesk

#include "host/server/net/TerminalWork.h"

#include "host/server/schedule/Schedule.h"

namespace vesk {

TerminalWork::TerminalWork(Server& server, ServerCommands& commands, const net::Hello& hello,
                           SessionOutput& output)
    : m_server(server), m_commands(commands),
      m_output(output), m_user{hello.loginId, hello.peerIdA, hello.peerIdB},
      m_terminal(std::to_string(hello.terminal)), m_streams(server, m_user) {}

void TerminalWork::Ask(std::int64_t nowMs, net::ControlRequest&& request, std::string_view name) {
    const std::int64_t dueMs = nowMs + m_server.Config().FaultFor(name).delayMs;
    m_asked.Add(dueMs, std::move(request));
}

void TerminalWork::CloseControl(std::uint32_t control) {
    m_streams.Stop(control);
    for (const RunningQuery& query : m_queries)
        if (query.control == control) m_output.Say(net::RequestDone{query.number});
    std::erase_if(m_queries, [&](const RunningQuery& query) { return query.control == control; });
}

void TerminalWork::Leave() {
    m_queries.clear();
    m_streams.StopAll();
}

void TerminalWork::HandleNext(std::int64_t nowMs) {
    Handled& one = m_handled.emplace_back(Handled{m_asked.TakeFirst()});
    std::visit([&](const auto& asked) { Handle(one, asked, nowMs); }, one.asked);
}

void TerminalWork::AnswerHandled(const std::string& fault) {
    for (Handled& one : std::exchange(m_handled, {}))
        std::visit([&](const auto& asked) { Answer(one, asked, fault); }, one.asked);
}

void TerminalWork::Handle(Handled& one, const net::ControlRequest& request, std::int64_t) {
    const qmx::MessageReader reader(request.bytes);
    ++m_traffic.requests;
    one.reply = m_server.Handle(reader.Handle(), m_user, SentAs(request));
    if (one.reply.isLost) m_asked = {};
    if (one.reply.isCut) m_output.End("the server plays a cut connection");
}

void TerminalWork::Handle(Handled& one, const net::ServerCommand& command, std::int64_t nowMs) {
    const std::size_t written = m_server.Journal().Written();
    one.told = m_commands.Run(command.line, m_user, nowMs);
    one.hasWritten = m_server.Journal().Written() != written;
}

void TerminalWork::Answer(Handled& one, const net::ControlRequest& request, const std::string& fault) {
    if (one.reply.isCut) return;
    if (!fault.empty() && (one.reply.rows || !one.reply.answers.empty())) {
        const qmx::MessageReader reader(request.bytes);
        one.reply = m_server.HandleUndone(reader.Handle(), m_user, SentAs(request), fault);
    }
    for (std::string& answer : one.reply.answers)
        m_output.Say(net::Response{request.control, request.number, std::move(answer)});
    if (one.reply.rows && !m_output.HasLeft())
        m_queries.push_back({request.control, request.number, std::move(*one.reply.rows)});
    else
        m_output.Say(net::RequestDone{request.number});
}

void TerminalWork::Answer(Handled& one, const net::ServerCommand& command, const std::string& fault) {
    if (!fault.empty() && one.hasWritten) one.told = {false, fault};
    m_output.Say(net::CommandDone{command.number, one.told.isDone, std::move(one.told.text)});
}

bool TerminalWork::HasToSay() const {
    return m_output.IsOpen() && (!m_queries.empty() || Unasked() > 0 || m_toldState != StateNow());
}

bool TerminalWork::SayNext() {
    if (!HasToSay()) return false;
    for (; m_output.IsOpen() && m_streams.Waiting() > 0; ++m_streamed, ++m_traffic.updates)
        m_output.Say(m_streams.TakeNext());
    if (!m_output.IsOpen()) return false;
    if (auto missed = m_streams.NextMissed()) m_output.Say(std::move(*missed));
    if (m_queries.empty())
        TellState();
    else
        NextRow();
    return true;
}

void TerminalWork::NextRow() {
    RunningQuery& query = m_queries.front();
    if (std::string row = m_server.NextRow(query.rows); !row.empty())
        m_output.Say(net::Response{query.control, query.number, std::move(row)});
    if (m_output.HasEnded() || !query.rows.isDone) return;
    m_output.Say(net::RequestDone{query.number});
    m_queries.pop_front();
}

TerminalWork::State TerminalWork::StateNow() const {
    const Clockwork& clock = m_server.Clock();
    // An end of the due ones is told behind what the terminal hears of them.
    const bool hasDue = clock.HasDue() || (m_toldState.hasDue && m_streams.Waiting() > 0);
    return {clock.Today(), hasDue, clock.Restricted().Changes()};
}

void TerminalWork::TellState() {
    if (!m_output.IsOpen() || m_toldState == StateNow()) return;
    m_toldState = StateNow();
    net::ServerState state{DateNumber(m_toldState.date), m_toldState.hasDue, {}};
    for (const auto date : m_server.Clock().Restricted().All())
        state.restricted.push_back(DateNumber(date));
    m_output.Say(std::move(state));
}

// One that takes its updates in drops must not hold up what the others wait for.
void TerminalWork::JudgePace(std::int64_t nowMs, std::size_t backlog) {
    constexpr std::int64_t periodMs = 1000;
    constexpr std::size_t leastTaken = 500;
    if (m_streams.Waiting() <= backlog)
        m_pace = {nowMs, m_streamed, true};
    else if (nowMs - m_pace.sinceMs >= periodMs)
        m_pace = {nowMs, m_streamed, m_streamed - m_pace.streamed >= leastTaken};
}

} // namespace vesk

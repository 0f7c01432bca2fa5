#include "host/server/net/ServerSession.h"

#include "host/server/net/Proof.h"
#include "host/server/schedule/Schedule.h"
#include "sdk/RxControl.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostControls = 1024;
constexpr std::size_t kMostSubscriptions = 4096; // each is looked at for every update
constexpr std::size_t kNonceBytes = 32;

} // namespace

struct ServerSession::Step {
    FrameType type;
    void (ServerSession::*take)(std::string_view payload);
};
const ServerSession::Step ServerSession::kSteps[] = {
    {FrameType::hello, &ServerSession::TakeAs<net::Hello>},
    {FrameType::openControl, &ServerSession::TakeAs<net::OpenControl>},
    {FrameType::closeControl, &ServerSession::TakeAs<net::CloseControl>},
    {FrameType::request, &ServerSession::TakeAs<net::ControlRequest>},
    {FrameType::subscribe, &ServerSession::TakeAs<net::Subscribe>},
    {FrameType::stop, &ServerSession::TakeAs<net::Stop>},
    {FrameType::command, &ServerSession::TakeAs<net::ServerCommand>},
};

ServerSession::ServerSession(Server& server, ServerCommands& commands, const SessionLimits& limits)
    : m_server(server), m_commands(commands), m_limits(limits),
      m_reader(limits.checksum, net::kMostTerminalFrameBytes),
      m_nonce(limits.logins ? RandomBytes(kNonceBytes) : std::string()) {
    Say(net::Challenge{net::kProtocolVersion, m_nonce});
}

void ServerSession::Take(std::string_view bytes, std::int64_t nowMs) {
    m_nowMs = m_heardMs = std::max(m_nowMs, nowMs);
    m_reader.Add(bytes);
    while (!HasEnded()) {
        const auto frame = m_reader.Next();
        if (!frame) break;
        const auto step = std::ranges::find(kSteps, frame->type, &Step::type);
        if (step == std::end(kSteps)) return Refuse("a frame that a server sends");
        if (!m_streams && frame->type != FrameType::hello) return Refuse("a terminal says hello first");
        (this->*step->take)(frame->payload);
    }
    if (m_reader.Fault() != FrameFault::none) Refuse(TextOf(m_reader.Fault()));
}

template <class Said>
void ServerSession::TakeAs(std::string_view payload) {
    if (auto said = net::Read<Said>(payload))
        On(std::move(*said));
    else
        Refuse("a frame that cannot be read");
}

void ServerSession::On(const net::Hello& said) {
    if (m_streams) return Refuse("a second hello");
    if (said.version != net::kProtocolVersion)
        return Refuse("the server speaks version " + std::to_string(net::kProtocolVersion) + ", not "
                      + std::to_string(said.version));
    if (said.loginId.empty()) return Refuse("a terminal without a login");
    if (!IsName(said.loginId) || !IsName(said.peerIdA) || !IsName(said.peerIdB))
        return Refuse("a hello with a name that is none");
    m_name = said.loginId;
    if (!IsProven(said)) return Refuse("the login is unknown here, or its secret or firm is another");
    m_user = {said.loginId, said.peerIdA, said.peerIdB};
    m_terminal = std::to_string(said.terminal);
    m_streams.emplace(m_server, m_user);
    Say(net::Welcome{net::kProtocolVersion, static_cast<std::uint64_t>(m_server.Clock().Now())});
    TellState();
}

// An unknown login takes as long as a wrong secret.
bool ServerSession::IsProven(const net::Hello& hello) const {
    if (!m_limits.logins) return true;
    const Login* login = m_limits.logins->Find(hello.loginId);
    const bool isSigned = AreSame(ProofOf(login ? login->secret : m_nonce, m_nonce, hello), hello.proof);
    return login && isSigned && login->user.peerIdA == hello.peerIdA && login->user.peerIdB == hello.peerIdB;
}

void ServerSession::On(const net::OpenControl& said) {
    if (said.kind > kRxAccountStream) return Refuse("a control of an unknown kind");
    if (m_controlKinds.contains(said.control)) return Refuse("a control opened twice");
    if (m_controlKinds.size() == kMostControls) return Refuse("too many controls");
    m_controlKinds.emplace(said.control, said.kind);
}

void ServerSession::On(const net::CloseControl& said) {
    m_streams->Stop(said.control);
    m_controlKinds.erase(said.control);
    // A request still counts when nobody hears its answer; a query's rows are for nobody.
    for (const RunningQuery& query : m_queries)
        if (query.control == said.control) Say(net::RequestDone{query.number});
    std::erase_if(m_queries, [&](const RunningQuery& query) { return query.control == said.control; });
}

void ServerSession::On(net::ControlRequest&& said) {
    const qmx::MessageReader reader(said.bytes);
    if (!reader.Good()) return Refuse("a request that is no message");
    if (said.bytes.size() > net::kLongestRequest || qmx::CountFields(said.bytes) > net::kMostRequestFields)
        return Refuse("a request that is too long");
    const std::int64_t delay = m_server.Config().FaultFor(qmx::Text(reader.Handle(), tag::requestName)).delayMs;
    m_asked.Add(m_nowMs + delay, std::move(said));
}

void ServerSession::On(net::ServerCommand&& said) {
    if (!m_limits.takesCommands)
        return Say(net::CommandDone{said.number, false,
                                    "The server takes no commands from terminals; --allow-commands lets it"});
    m_asked.Add(m_nowMs, std::move(said));
}

void ServerSession::On(const net::Subscribe& said) {
    const auto kind = m_controlKinds.find(said.control);
    if (kind == m_controlKinds.end() || kind->second == kRxRequests)
        return Say(net::Unsubscribed{said.control, "there is no such stream control"});
    if (said.fields.size() > net::kMostSubscribedFields) return Refuse("a subscription to too much");
    if (m_streams->Subscriptions() >= kMostSubscriptions) return Refuse("too many subscriptions");
    if (std::string fault = m_streams->Subscribe(said.control, said.fields, said.isRenewed); !fault.empty())
        Say(net::Unsubscribed{said.control, std::move(fault)});
}

void ServerSession::On(const net::Stop& said) {
    m_streams->Stop(said.control);
}

template <class Said>
void ServerSession::Say(Said said) {
    if (m_hasLeft) return;
    if (!net::Append(m_output, std::move(said), m_limits.checksum)) End("a message is too long to be sent");
}

void ServerSession::Refuse(const std::string& text) {
    Say(net::ConnectionRefused{text});
    End(text);
}

void ServerSession::End(std::string reason) {
    if (!HasEnded()) m_endReason = std::move(reason);
}

void ServerSession::Leave() {
    if (std::exchange(m_hasLeft, true)) return;
    m_output.clear();
    m_queries.clear();
    if (m_streams) m_streams.emplace(m_server, m_user); // subscribed to nothing
}

ServerSession::ToldState ServerSession::StateNow() const {
    const Clockwork& clock = m_server.Clock();
    // An end of the due ones is told behind what the terminal hears of them.
    const bool hasDue = clock.HasDue() || (m_toldState.hasDue && m_streams->Waiting() > 0);
    return {clock.Today(), hasDue, clock.Restricted().Changes()};
}

void ServerSession::TellState() {
    if (!m_streams || m_hasLeft || HasEnded() || !HasRoom() || m_toldState == StateNow()) return;
    m_toldState = StateNow();
    net::ServerState state{DateNumber(m_toldState.date), m_toldState.hasDue, {}};
    for (const auto date : m_server.Clock().Restricted().All())
        state.restricted.push_back(DateNumber(date));
    Say(std::move(state));
}

bool ServerSession::TakesInput() const {
    const std::size_t waiting = m_asked.Size() + m_queries.size() + (m_streams ? m_streams->CatchUps() : 0);
    return !HasEnded() && HasRoom() && m_asked.Bytes() < m_limits.requestBytes && waiting < m_limits.requests;
}

Yielding ServerSession::Yields(std::int64_t nowMs) const {
    if (HasEnded() || m_hasLeft) return Yielding::never;
    if (IsStranger())
        return m_beganMs && nowMs - *m_beganMs >= m_limits.graceMs ? Yielding::stranger : Yielding::never;
    const bool wants =
        m_streams->Subscriptions() > 0 || m_asked.Size() > 0 || !m_queries.empty() || Waiting() > 0;
    return wants || nowMs - m_heardMs < m_limits.idleMs ? Yielding::never : Yielding::idle;
}

bool ServerSession::HasWork(std::int64_t nowMs) const {
    return TakesRequests(nowMs) || HasToSay();
}

bool ServerSession::TakesRequests(std::int64_t nowMs) const {
    return m_streams && m_asked.IsDue(nowMs) && (m_hasLeft || (!HasEnded() && HasRoom()));
}

bool ServerSession::HasToSay() const {
    if (!m_streams || m_hasLeft || HasEnded() || !HasRoom()) return false;
    return !m_queries.empty() || m_streams->Waiting() > 0 || m_streams->CatchUps() > 0
           || m_toldState != StateNow();
}

std::size_t ServerSession::Waiting() const {
    const std::size_t streamed = m_streams ? m_streams->Waiting() + m_streams->CatchUps() : 0;
    return streamed + (m_output.empty() ? 0 : 1);
}

void ServerSession::Pump(std::int64_t nowMs) {
    m_server.Hold();
    Handle(nowMs);
    Deliver(m_server.Release());
}

void ServerSession::Handle(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (HasRoom()) m_roomAtMs = m_nowMs;
    if (!m_beganMs) m_beganMs = m_nowMs;
    const auto end = std::chrono::steady_clock::now() + m_limits.pumpTime;
    for (std::size_t turn = 0; turn < m_limits.turns && TakesRequests(m_nowMs); ++turn) {
        Handled& one = m_handled.emplace_back(Handled{m_asked.TakeFirst()});
        std::visit([&](const auto& asked) { Handle(one, asked); }, one.asked);
        if (std::chrono::steady_clock::now() >= end) break;
    }
}

void ServerSession::Deliver(const std::string& fault) {
    TellState();
    for (Handled& one : std::exchange(m_handled, {}))
        std::visit([&](const auto& asked) { Answer(one, asked, fault); }, one.asked);
    const auto end = std::chrono::steady_clock::now() + m_limits.pumpTime;
    for (std::size_t turn = 0; turn < m_limits.turns && DeliverOnce(); ++turn)
        if (std::chrono::steady_clock::now() >= end) break;
    if (!m_hasLeft) Judge();
}

// All updates, and one row of a long query.
bool ServerSession::DeliverOnce() {
    if (!HasToSay()) return false;
    for (; HasRoom() && !HasEnded() && m_streams->Waiting() > 0; ++m_streamed, ++m_traffic.updates)
        Say(m_streams->TakeNext());
    if (!HasRoom() || HasEnded()) return false;
    if (auto missed = m_streams->NextMissed()) Say(std::move(*missed));
    if (m_queries.empty())
        TellState();
    else
        NextRow();
    return true;
}

void ServerSession::Handle(Handled& one, const net::ControlRequest& request) {
    const qmx::MessageReader reader(request.bytes);
    ++m_traffic.requests;
    one.reply = m_server.Handle(reader.Handle(), m_user, SentAs(request));
    if (one.reply.isLost) m_asked = {};
    if (one.reply.isCut) End("the server plays a cut connection");
}

void ServerSession::Handle(Handled& one, const net::ServerCommand& command) {
    const std::size_t written = m_server.Journal().Written();
    one.told = m_commands.Run(command.line, m_user, m_nowMs);
    one.hasWritten = m_server.Journal().Written() != written;
}

void ServerSession::Answer(Handled& one, const net::ControlRequest& request, const std::string& fault) {
    if (one.reply.isCut) return;
    if (!fault.empty() && (one.reply.rows || !one.reply.answers.empty())) {
        const qmx::MessageReader reader(request.bytes);
        one.reply = m_server.HandleUndone(reader.Handle(), m_user, SentAs(request), fault);
    }
    for (std::string& answer : one.reply.answers)
        Say(net::Response{request.control, request.number, std::move(answer)});
    if (one.reply.rows && !m_hasLeft)
        m_queries.push_back({request.control, request.number, std::move(*one.reply.rows)});
    else
        Say(net::RequestDone{request.number});
}

void ServerSession::Answer(Handled& one, const net::ServerCommand& command, const std::string& fault) {
    if (!fault.empty() && one.hasWritten) one.told = {false, fault};
    Say(net::CommandDone{command.number, one.told.isDone, std::move(one.told.text)});
}

void ServerSession::NextRow() {
    RunningQuery& query = m_queries.front();
    if (std::string row = m_server.NextRow(query.rows); !row.empty())
        Say(net::Response{query.control, query.number, std::move(row)});
    if (HasEnded() || !query.rows.isDone) return;
    Say(net::RequestDone{query.number});
    m_queries.pop_front();
}

void ServerSession::Judge() {
    constexpr std::int64_t periodMs = 1000;
    constexpr std::size_t leastTaken = 500;
    // One that takes its updates in drops must not hold up what the others wait for.
    if (!HasBacklog())
        m_pace = {m_nowMs, m_streamed, true};
    else if (m_nowMs - m_pace.sinceMs >= periodMs)
        m_pace = {m_nowMs, m_streamed, m_streamed - m_pace.streamed >= leastTaken};
    if (m_nowMs - m_roomAtMs > m_limits.stalledMs) End("it takes nothing more");
    if (!m_streams && m_nowMs - *m_beganMs > m_limits.greetingMs) End("it does not say hello");
    if (m_streams && m_streams->Waiting() > m_limits.streamBacklog) End("too many updates wait for it");
}

} // namespace vesk

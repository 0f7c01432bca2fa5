#include "host/server/net/ServerSession.h"

#include "host/server/net/Proof.h"
#include "sdk/RxControl.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostControls = 1024;
constexpr std::size_t kMostSessionSubscriptions = 4096; // each is looked at for every update
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
      m_reader(limits.checksum, net::kMostTerminalFrameBytes), m_output(limits.outputBytes, limits.checksum),
      m_nonce(limits.logins ? RandomBytes(kNonceBytes) : std::string()) {
    m_output.Say(net::Challenge{net::kProtocolVersion, m_nonce});
}

void ServerSession::Take(std::string_view bytes, std::int64_t nowMs) {
    m_nowMs = m_heardMs = std::max(m_nowMs, nowMs);
    m_reader.Add(bytes);
    while (!HasEnded()) {
        const auto frame = m_reader.Next();
        if (!frame) break;
        const auto step = std::ranges::find(kSteps, frame->type, &Step::type);
        if (step == std::end(kSteps)) return m_output.Refuse("a frame that a server sends");
        if (!m_work && frame->type != FrameType::hello) return m_output.Refuse("a terminal says hello first");
        (this->*step->take)(frame->payload);
    }
    if (m_reader.Fault() != FrameFault::none) m_output.Refuse(TextOf(m_reader.Fault()));
}

template <class Said>
void ServerSession::TakeAs(std::string_view payload) {
    if (auto said = net::Read<Said>(payload))
        On(std::move(*said));
    else
        m_output.Refuse("a frame that cannot be read");
}

void ServerSession::On(const net::Hello& said) {
    if (m_work) return m_output.Refuse("a second hello");
    if (said.version != net::kProtocolVersion)
        return m_output.Refuse("the server speaks version " + std::to_string(net::kProtocolVersion) + ", not "
                               + std::to_string(said.version));
    if (said.loginId.empty()) return m_output.Refuse("a terminal without a login");
    if (!IsName(said.loginId) || !IsName(said.peerIdA) || !IsName(said.peerIdB))
        return m_output.Refuse("a hello with a name that is none");
    m_name = said.loginId;
    if (m_limits.logins && !m_limits.logins->IsProven(said, m_nonce))
        return m_output.Refuse("the login is unknown here, or its secret or firm is another");
    if (m_limits.admits && !m_limits.admits(said.loginId))
        return m_output.Refuse("too many terminals of this login");
    m_work.emplace(m_server, m_commands, said, m_output);
    m_output.Say(net::Welcome{net::kProtocolVersion, static_cast<std::uint64_t>(m_server.Clock().Now())});
    m_work->TellState();
}

void ServerSession::On(const net::OpenControl& said) {
    if (said.kind > kRxAccountStream) return m_output.Refuse("a control of an unknown kind");
    if (m_controlKinds.contains(said.control)) return m_output.Refuse("a control opened twice");
    if (m_controlKinds.size() == kMostControls) return m_output.Refuse("too many controls");
    m_controlKinds.emplace(said.control, said.kind);
}

void ServerSession::On(const net::CloseControl& said) {
    m_work->CloseControl(said.control);
    m_controlKinds.erase(said.control);
}

void ServerSession::On(net::ControlRequest&& said) {
    const qmx::MessageReader reader(said.bytes);
    if (!reader.Good()) return m_output.Refuse("a request that is no message");
    if (said.bytes.size() > net::kLongestRequest || qmx::CountFields(said.bytes) > net::kMostRequestFields)
        return m_output.Refuse("a request that is too long");
    m_work->Ask(m_nowMs, std::move(said), qmx::Text(reader.Handle(), tag::requestName));
}

void ServerSession::On(net::ServerCommand&& said) {
    if (!m_limits.takesCommands)
        return m_output.Say(net::CommandDone{
            said.number, false, "The server takes no commands from terminals; --allow-commands lets it"});
    m_work->Ask(m_nowMs, std::move(said));
}

void ServerSession::On(const net::Subscribe& said) {
    const auto kind = m_controlKinds.find(said.control);
    if (kind == m_controlKinds.end() || kind->second == kRxRequests)
        return m_output.Say(net::Unsubscribed{said.control, said.number, "there is no such stream control"});
    if (said.fields.size() > net::kMostSubscribedFields) return m_output.Refuse("a subscription to too much");
    if (m_work->Streams().Subscriptions() >= kMostSessionSubscriptions)
        return m_output.Refuse("too many subscriptions");
    if (std::string fault = m_work->Streams().Subscribe(said.control, said.fields, said.isRenewed);
        !fault.empty())
        m_output.Say(net::Unsubscribed{said.control, said.number, std::move(fault)});
}

void ServerSession::On(const net::Stop& said) {
    m_work->Streams().Stop(said.control);
}

void ServerSession::Leave() {
    if (m_output.HasLeft()) return;
    m_output.Leave();
    if (m_work) m_work->Leave();
}

bool ServerSession::TakesInput() const {
    if (HasEnded() || !m_output.HasRoom()) return false;
    return !m_work || (m_work->AskedBytes() < m_limits.requestBytes && m_work->UnderWay() < m_limits.requests);
}

Yielding ServerSession::Yields(std::int64_t nowMs) const {
    if (HasEnded() || m_output.HasLeft()) return Yielding::never;
    if (IsStranger())
        return m_beganMs && nowMs - *m_beganMs >= m_limits.graceMs ? Yielding::stranger : Yielding::never;
    const bool wants = !m_work->WantsNothing() || !m_output.Bytes().IsEmpty();
    return wants || nowMs - m_heardMs < m_limits.idleMs ? Yielding::never : Yielding::idle;
}

bool ServerSession::HasWork(std::int64_t nowMs) const {
    return TakesRequests(nowMs) || (m_work && m_work->HasToSay());
}

bool ServerSession::TakesRequests(std::int64_t nowMs) const {
    return m_work && m_work->IsDue(nowMs) && (m_output.HasLeft() || m_output.IsOpen());
}

std::size_t ServerSession::Waiting() const {
    return (m_work ? m_work->Unasked() : 0) + (m_output.Bytes().IsEmpty() ? 0 : 1);
}

bool ServerSession::IsBehind() const {
    return m_work && m_work->Streams().Waiting() > m_limits.Backlog() && m_work->IsAtGoodPace();
}

void ServerSession::Pump(std::int64_t nowMs) {
    m_server.Hold();
    Handle(nowMs);
    Deliver(m_server.Release());
}

void ServerSession::Handle(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (m_output.HasRoom()) m_roomAtMs = m_nowMs;
    if (!m_beganMs) m_beganMs = m_nowMs;
    const auto end = std::chrono::steady_clock::now() + m_limits.pumpTime;
    for (std::size_t turn = 0; turn < m_limits.turns && TakesRequests(m_nowMs); ++turn) {
        m_work->HandleNext(m_nowMs);
        if (std::chrono::steady_clock::now() >= end) break;
    }
}

void ServerSession::Deliver(const std::string& fault) {
    if (m_work) {
        m_work->TellState();
        m_work->AnswerHandled(fault);
        const auto end = std::chrono::steady_clock::now() + m_limits.pumpTime;
        for (std::size_t turn = 0; turn < m_limits.turns && m_work->SayNext(); ++turn)
            if (std::chrono::steady_clock::now() >= end) break;
    }
    if (!m_output.HasLeft()) Judge();
}

void ServerSession::Judge() {
    if (m_nowMs - m_roomAtMs > m_limits.stalledMs) m_output.End("it takes nothing more");
    if (!m_work) {
        if (m_nowMs - *m_beganMs > m_limits.greetingMs) m_output.End("it does not say hello");
        return;
    }
    m_work->JudgePace(m_nowMs, m_limits.Backlog());
    if (m_work->Streams().Waiting() > m_limits.streamBacklog) m_output.End("too many updates wait for it");
}

} // namespace vesk

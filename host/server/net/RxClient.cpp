#include "host/server/net/RxClientControl.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kMostCommands = 1000;

} // namespace

struct RxClient::Step {
    FrameType type;
    bool (RxClient::*take)(std::string_view payload); // false: it cannot be read
};
const RxClient::Step RxClient::kSteps[] = {
    {FrameType::response, &RxClient::TakeAs<net::Response>},
    {FrameType::requestDone, &RxClient::TakeAs<net::RequestDone>},
    {FrameType::update, &RxClient::TakeAs<net::Update>},
    {FrameType::unsubscribed, &RxClient::TakeAs<net::Unsubscribed>},
    {FrameType::commandDone, &RxClient::TakeAs<net::CommandDone>},
    {FrameType::state, &RxClient::TakeAs<net::ServerState>},
};

RxClient::RxClient(std::unique_ptr<Channel> channel, UserIdentity user, StateChanged changed,
                   StateTold stateTold, std::chrono::milliseconds pumpTime)
    : m_changed(std::move(changed)), m_stateTold(std::move(stateTold)), m_pumpTime(pumpTime),
      m_connection(std::move(channel), std::move(user), *this) {}
RxClient::~RxClient() = default;

RxControl* RxClient::Get(int kind, CKeloRxNotifierBase* notifier) {
    if (!notifier || kind < kRxRequests || kind > kRxAccountStream) return nullptr;
    const std::uint32_t id = ++m_lastControl;
    const auto made = m_controls.emplace(id, std::make_unique<Control>(*this, id, kind, *notifier));
    made.first->second->Introduce(false);
    return made.first->second.get();
}

void RxClient::Destroy(RxControl* control) {
    const auto found =
        std::ranges::find_if(m_controls, [&](const auto& entry) { return entry.second.get() == control; });
    if (found == m_controls.end()) return;
    const std::uint32_t id = found->first;
    m_controls.erase(found);
    m_connection.Say(net::CloseControl{id});
}

std::uint64_t RxClient::Send(std::uint32_t control, std::string_view bytes) {
    if (!m_requests.Add(m_lastRequest + 1, control, bytes, m_connection.NowMs())) return 0;
    const std::uint64_t number = ++m_lastRequest;
    SayRequests();
    return number;
}

void RxClient::SayRequests() {
    while (m_connection.HasRoom()) {
        const net::ControlRequest* request = m_requests.SayNext();
        if (!request) break;
        m_connection.Say(*request);
    }
}

bool RxClient::Withdraw(std::uint64_t number) {
    const auto request = m_requests.Withdraw(number);
    if (!request) return false;
    const qmx::MessageReader reader(request->bytes);
    qmx::MessageWriter writer;
    m_deliveries.Keep(request->control, false, Server::Refusal(writer, reader.Handle(), Withdrawn()));
    return true;
}

void RxClient::Command(std::string line, CommandTold told) {
    if (State() != LinkState::connected)
        return TellLater(std::move(told), {false, "There is no connection to the server"});
    if (m_commands.size() >= kMostCommands)
        return TellLater(std::move(told), {false, "Too many commands wait for the server"});
    if (!m_connection.Say(net::ServerCommand{m_lastRequest + 1, std::move(line)}))
        return TellLater(std::move(told), {false, "The command is too long to be sent"});
    m_commands.emplace(++m_lastRequest, std::move(told));
}

void RxClient::TellLater(CommandTold command, Told told) {
    if (!command) return;
    m_deliveries.Keep([command = std::move(command), told = std::move(told)] { command(told); });
}

std::size_t RxClient::AnswersDue() const {
    return m_requests.Size() + m_deliveries.Answers();
}

std::size_t RxClient::Waiting() const {
    return m_requests.Size() + m_commands.size() + m_deliveries.Size() + m_connection.Waiting();
}

bool RxClient::Flush(std::int64_t nowMs) {
    m_connection.BeginWhenDue(nowMs);
    return Exchange();
}

std::size_t RxClient::Pump(std::int64_t nowMs) {
    m_connection.BeginWhenDue(nowMs);
    const auto end = std::chrono::steady_clock::now() + m_pumpTime;
    const auto isOver = [end] { return std::chrono::steady_clock::now() >= end; };
    std::size_t calls = 0;
    for (bool isActive = true; isActive;) {
        isActive = Exchange();
        while (m_deliveries.Size() > 0) {
            isActive = true;
            // Taken out before the call: the notifier may run a message loop that pumps again.
            Deliveries::Delivery next = m_deliveries.TakeFirst();
            if (Deliver(next)) ++calls;
            m_deliveries.GiveBack(std::move(next));
            if (isOver()) break;
        }
        if (!isOver()) continue;
        // What the notifiers asked for.
        Exchange();
        break;
    }
    return calls;
}

bool RxClient::Exchange() {
    SayRequests();
    const bool mayBringMore = m_connection.Exchange(m_deliveries.HasRoom());
    return mayBringMore || (m_connection.HasSaidAll() && m_requests.HasUnsaid());
}

void RxClient::OnFrame(const Frame& frame) {
    const auto step = std::ranges::find(kSteps, frame.type, &Step::type);
    if (step == std::end(kSteps)) return m_connection.Lose("a frame that a terminal sends");
    if (!(this->*step->take)(frame.payload)) m_connection.Lose("a frame that cannot be read");
}

void RxClient::OnWelcomed() {
    for (const auto& [id, control] : m_controls)
        control->Introduce(m_wasConnected);
    m_wasConnected = true;
    m_requests.BeginConnection();
    SayRequests();
}

void RxClient::OnLost() {
    m_requests.EndConnection();
    for (auto& [number, command] : std::exchange(m_commands, {}))
        TellLater(std::move(command), {false, "The connection was lost; whether it was done is not known"});
}

void RxClient::OnStateChanged(LinkState state, const std::string& text) {
    if (m_changed) m_changed(state, text);
}

template <class Said>
bool RxClient::TakeAs(std::string_view payload) {
    auto said = net::Read<Said>(payload);
    if (said) On(std::move(*said));
    return said.has_value();
}

template <class Said>
void RxClient::TakeAnswer(Said&& said) {
    std::optional<SentRequests::Answer> told;
    if (const char* fault = m_requests.Take(std::forward<Said>(said), told)) return m_connection.Lose(fault);
    if (told) m_deliveries.Keep(told->control, false, told->bytes);
}

void RxClient::On(const net::Unsubscribed& said) {
    const auto found = m_controls.find(said.control);
    if (found != m_controls.end()) found->second->Forget(said.number);
    OnStateChanged(State(), "a subscription was refused: " + Printable(said.text));
}

void RxClient::On(net::CommandDone&& said) {
    auto found = m_commands.extract(said.number);
    if (found.empty()) return m_connection.Lose("the answer of a command that nobody gave");
    TellLater(std::move(found.mapped()), {said.isDone, Printable(said.text)});
}

void RxClient::On(net::ServerState&& said) {
    m_serverState = std::move(said);
    if (m_stateTold) m_stateTold(m_serverState);
}

bool RxClient::Deliver(const Deliveries::Delivery& delivery) {
    if (delivery.tell) {
        delivery.tell();
        return true;
    }
    const auto found = m_controls.find(delivery.control);
    if (found == m_controls.end()) return false;
    Control& control = *found->second;
    if (delivery.isStream && !control.IsSubscribed()) return false;
    const qmx::MessageReader reader(delivery.bytes);
    if (!reader.Good()) {
        m_connection.Lose("a message that cannot be read");
        return false;
    }
    control.Tell(reader.Handle(), delivery.isStream);
    return true;
}

} // namespace vesk

#include "host/server/net/RemoteHub.h"

#include "host/server/HubControl.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <utility>

namespace vesk {
namespace {

constexpr std::int64_t kShortestPauseMs = 200;
constexpr std::int64_t kLongestPauseMs = 5000;
constexpr std::int64_t kConnectMs = 5000;                     // until the server must have welcomed
constexpr std::size_t kLongestRequest = kMostFrameBytes - 64; // less what stands around it
constexpr std::size_t kMostRequests = 100'000;
constexpr std::size_t kMostRequestBytes = 64 * 1024 * 1024;
constexpr std::size_t kMostCommands = 1000;
// From which on nothing more is read.
constexpr std::size_t kMostDeliveries = 10'000;
constexpr std::size_t kMostDeliveryBytes = 8 * 1024 * 1024;
constexpr std::chrono::milliseconds kPumpTime{12};

// Under which this terminal's requests are known again, also after the server's restart.
std::uint64_t MakeIdentity() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

} // namespace

class RemoteHub::Control final : public HubControl {
public:
    Control(RemoteHub& hub, std::uint32_t id, int kind, CKeloRxNotifierBase& notifier)
        : HubControl(kind, notifier), m_hub(hub), m_id(id) {}
    ~Control() = default;

    // To a server that knows nothing of it.
    void Introduce(bool isRenewed) const {
        m_hub.Say(net::Open{m_id, static_cast<std::uint32_t>(Kind())});
        for (const Subscription& fields : Subscriptions())
            m_hub.Say(net::Subscribe{m_id, isRenewed, fields});
    }

private:
    std::uint64_t Queue(std::string_view, std::string_view bytes) override { return m_hub.Send(m_id, bytes); }
    void OnSubscribed(const Subscription& fields) override { m_hub.Say(net::Subscribe{m_id, false, fields}); }
    void OnStopped() override { m_hub.Say(net::Stop{m_id}); }

    RemoteHub& m_hub;
    const std::uint32_t m_id;
};

struct RemoteHub::Step {
    FrameType type;
    bool (RemoteHub::*take)(std::string_view payload); // false: it cannot be read
};
const RemoteHub::Step RemoteHub::kSteps[] = {
    {FrameType::welcome, &RemoteHub::TakeAs<net::Welcome>},
    {FrameType::refusal, &RemoteHub::TakeAs<net::Refusal>},
    {FrameType::answer, &RemoteHub::TakeAs<net::Answer>},
    {FrameType::done, &RemoteHub::TakeAs<net::Done>},
    {FrameType::stream, &RemoteHub::TakeAs<net::Stream>},
    {FrameType::unsubscribed, &RemoteHub::TakeAs<net::Unsubscribed>},
    {FrameType::told, &RemoteHub::TakeAs<net::Told>},
    {FrameType::state, &RemoteHub::TakeAs<net::ServerState>},
};

RemoteHub::RemoteHub(ServerAddress address, UserIdentity user, StateChanged changed, StateTold stateTold)
    : m_address(std::move(address)), m_user(std::move(user)), m_changed(std::move(changed)),
      m_stateTold(std::move(stateTold)), m_identity(MakeIdentity()) {}
RemoteHub::~RemoteHub() = default;

RxControl* RemoteHub::Get(int kind, CKeloRxNotifierBase* notifier) {
    if (!HubControl::CanBe(kind, notifier)) return nullptr;
    const std::uint32_t id = ++m_lastControl;
    const auto made = m_controls.emplace(id, std::make_unique<Control>(*this, id, kind, *notifier));
    made.first->second->Introduce(false);
    return made.first->second.get();
}

void RemoteHub::Destroy(RxControl* control) {
    const auto found =
        std::ranges::find_if(m_controls, [&](const auto& entry) { return entry.second.get() == control; });
    if (found == m_controls.end()) return;
    const std::uint32_t id = found->first;
    std::erase_if(m_deliveries, [&](const Delivery& delivery) {
        const bool isItsOwn = delivery.control == id;
        if (isItsOwn) m_deliveryBytes -= delivery.bytes.size();
        return isItsOwn;
    });
    m_controls.erase(found);
    Say(net::Close{id});
}

std::uint64_t RemoteHub::Send(std::uint32_t control, std::string_view bytes) {
    if (bytes.size() > kLongestRequest || m_requests.size() >= kMostRequests
        || m_requestBytes + bytes.size() > kMostRequestBytes)
        return 0;
    const std::uint64_t number = m_lastRequest + 1;
    const auto made = m_requests.emplace(number, Unanswered{{control, number, std::string(bytes)}});
    m_lastRequest = number;
    m_requestBytes += bytes.size();
    Say(made.first->second.request);
    return number;
}

void RemoteHub::Command(std::string line, CommandTold told) {
    if (m_state != LinkState::connected)
        return TellLater(std::move(told), {false, "There is no connection to the server"});
    if (m_commands.size() >= kMostCommands)
        return TellLater(std::move(told), {false, "Too many commands wait for the server"});
    const net::Command command{m_lastRequest + 1, std::move(line)};
    if (!net::Append(m_output, command))
        return TellLater(std::move(told), {false, "The command is too long to be sent"});
    m_commands.emplace(++m_lastRequest, std::move(told));
}

void RemoteHub::TellLater(CommandTold command, Told told) {
    if (!command) return;
    m_deliveries.push_back(
        {0, false, {}, [command = std::move(command), told = std::move(told)] { command(told); }});
}

template <class Said>
void RemoteHub::Say(Said said) {
    if (m_state == LinkState::connected) static_cast<void>(net::Append(m_output, std::move(said)));
}

std::size_t RemoteHub::Pump(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (m_state == LinkState::lost && m_nowMs >= m_againAtMs) Connect();
    Exchange();
    const auto end = std::chrono::steady_clock::now() + kPumpTime;
    std::size_t calls = 0;
    while (!m_deliveries.empty()) {
        // Taken out before the call: the notifier may run a message loop that pumps again.
        const Delivery next = std::move(m_deliveries.front());
        m_deliveries.pop_front();
        m_deliveryBytes -= next.bytes.size();
        if (Deliver(next)) ++calls;
        if (std::chrono::steady_clock::now() >= end) break;
    }
    // What the notifiers asked for.
    Exchange();
    return calls;
}

void RemoteHub::Connect() {
    std::string error;
    m_reader = {};
    m_output.clear();
    m_socket = Socket::Connect(m_address.host, m_address.port, error);
    if (!m_socket) return Lose(error);
    m_againAtMs = m_nowMs + kConnectMs;
    Change(LinkState::connecting, "connecting to " + m_address.host + ":" + std::to_string(m_address.port));
    static_cast<void>(net::Append(m_output, net::Hello{net::kProtocolVersion, m_user.loginId, m_user.peerIdA,
                                                       m_user.peerIdB, m_identity}));
}

void RemoteHub::Exchange() {
    if (m_state == LinkState::lost) return;
    vesk::Waiting came[] = {{&m_socket, true, true}};
    Wait(came, 0);
    if (!m_socket.Connected()) return Lose("the server does not answer");
    if (came[0].canWrite) SendOutput();
    if (came[0].canRead) Receive();
    if (m_state == LinkState::connecting && m_nowMs >= m_againAtMs) Lose("the server does not answer");
}

void RemoteHub::SendOutput() {
    std::string_view left = m_output;
    Transfer transfer = Transfer::some;
    while (!left.empty() && transfer == Transfer::some)
        transfer = m_socket.Send(left);
    m_output.erase(0, m_output.size() - left.size());
    if (transfer == Transfer::ended) Lose("the server has ended the connection");
}

bool RemoteHub::HasRoom() const {
    return m_deliveries.size() < kMostDeliveries && m_deliveryBytes < kMostDeliveryBytes;
}

void RemoteHub::Receive() {
    std::array<char, 65536> part;
    Transfer transfer = Transfer::some;
    while (m_state != LinkState::lost && transfer == Transfer::some && HasRoom()) {
        std::size_t got = 0;
        transfer = m_socket.Receive(part, got);
        m_reader.Add({part.data(), got});
        while (m_state != LinkState::lost) {
            const auto frame = m_reader.Next();
            if (!frame) break;
            Take(*frame);
        }
        if (m_reader.Fault() != FrameFault::none) Lose(TextOf(m_reader.Fault()));
    }
    if (transfer == Transfer::ended) Lose("the server has ended the connection");
}

void RemoteHub::Take(const Frame& frame) {
    const auto step = std::ranges::find(kSteps, frame.type, &Step::type);
    if (step == std::end(kSteps)) return Lose("a frame that a terminal sends");
    const bool isGreeting = frame.type == FrameType::welcome || frame.type == FrameType::refusal;
    if (m_state == LinkState::connecting && !isGreeting) return Lose("a server welcomes first");
    if (!(this->*step->take)(frame.payload)) Lose("a frame that cannot be read");
}

template <class Said>
bool RemoteHub::TakeAs(std::string_view payload) {
    auto said = net::Read<Said>(payload);
    if (said) On(std::move(*said));
    return said.has_value();
}

void RemoteHub::On(const net::Welcome& said) {
    if (m_state == LinkState::connected) return Lose("a second welcome");
    if (said.version != net::kProtocolVersion)
        return Lose("the server speaks version " + std::to_string(said.version));
    m_pauseMs = 0;
    Change(LinkState::connected, "connected");
    for (const auto& [id, control] : m_controls)
        control->Introduce(m_wasConnected);
    m_wasConnected = true;
    for (auto& [number, waiting] : m_requests) {
        waiting.toSkip = waiting.answers;
        Say(waiting.request);
    }
}

void RemoteHub::On(const net::Refusal& said) {
    Lose("the server refuses: " + said.text);
}

void RemoteHub::On(net::Answer&& said) {
    const auto found = m_requests.find(said.number);
    if (found == m_requests.end()) return Lose("an answer that nobody asked for");
    Unanswered& waiting = found->second;
    if (waiting.toSkip > 0) {
        --waiting.toSkip;
        waiting.skipped = std::move(said.bytes);
        return;
    }
    ++waiting.answers;
    Keep({waiting.request.control, false, std::move(said.bytes)});
}

void RemoteHub::On(const net::Done& said) {
    auto found = m_requests.extract(said.number);
    if (found.empty()) return Lose("the end of a request that nobody made");
    Unanswered& ended = found.mapped();
    m_requestBytes -= ended.request.bytes.size();
    // This server has less than the one before. The last answer tells the end of the rows.
    if (ended.toSkip > 0 && !ended.skipped.empty())
        Keep({ended.request.control, false, std::move(ended.skipped)});
}

void RemoteHub::On(net::Stream&& said) {
    Keep({said.control, true, std::move(said.bytes)});
}

void RemoteHub::Keep(Delivery delivery) {
    m_deliveryBytes += delivery.bytes.size();
    m_deliveries.push_back(std::move(delivery));
}

void RemoteHub::On(const net::Unsubscribed& said) {
    const auto found = m_controls.find(said.control);
    if (found != m_controls.end()) found->second->Forget();
    Change(m_state, "a subscription was refused: " + said.text);
}

void RemoteHub::On(net::Told&& said) {
    auto found = m_commands.extract(said.number);
    if (found.empty()) return Lose("the answer of a command that nobody gave");
    TellLater(std::move(found.mapped()), {said.isDone, std::move(said.text)});
}

void RemoteHub::On(net::ServerState&& said) {
    m_serverState = std::move(said);
    if (m_stateTold) m_stateTold(m_serverState);
}

void RemoteHub::Lose(const std::string& why) {
    if (m_state == LinkState::lost && m_nowMs < m_againAtMs) return;
    m_socket = {};
    m_pauseMs = std::clamp(m_pauseMs * 2, kShortestPauseMs, kLongestPauseMs);
    m_againAtMs = m_nowMs + m_pauseMs;
    for (auto& [number, command] : std::exchange(m_commands, {}))
        TellLater(std::move(command), {false, "The connection was lost; whether it was done is not known"});
    Change(LinkState::lost, why);
}

void RemoteHub::Change(LinkState state, const std::string& text) {
    m_state = state;
    if (m_changed) m_changed(state, text);
}

bool RemoteHub::Deliver(const Delivery& delivery) {
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
        Lose("a message that cannot be read");
        return false;
    }
    control.Tell(reader.Handle(), delivery.isStream);
    return true;
}

} // namespace vesk

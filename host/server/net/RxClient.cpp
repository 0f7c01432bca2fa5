#include "host/server/net/Proof.h"
#include "host/server/net/RxClientControl.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <utility>

namespace vesk {
namespace {

constexpr std::int64_t kShortestPauseMs = 200;
constexpr std::int64_t kLongestPauseMs = 5000;
constexpr std::int64_t kConnectMs = 5000;        // until the server must have welcomed
constexpr std::size_t kMostRequests = 2'000'000; // twice the largest basket
constexpr std::size_t kMostRequestBytes = std::size_t{1} << 30;
constexpr std::size_t kMostCommands = 1000;
// From which on nothing more is read.
constexpr std::size_t kMostDeliveries = 10'000;
constexpr std::size_t kMostDeliveryBytes = std::size_t{8} * 1024 * 1024;
// Unsent output, from which on no request is added.
constexpr std::size_t kMostOutputBytes = std::size_t{256} * 1024;

// Under which this terminal's requests are known again, also after the server's restart.
std::uint64_t MakeIdentity() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

} // namespace

struct RxClient::Step {
    FrameType type;
    bool (RxClient::*take)(std::string_view payload); // false: it cannot be read
};
const RxClient::Step RxClient::kSteps[] = {
    {FrameType::challenge, &RxClient::TakeAs<net::Challenge>},
    {FrameType::welcome, &RxClient::TakeAs<net::Welcome>},
    {FrameType::connectionRefused, &RxClient::TakeAs<net::ConnectionRefused>},
    {FrameType::response, &RxClient::TakeAs<net::Response>},
    {FrameType::requestDone, &RxClient::TakeAs<net::RequestDone>},
    {FrameType::update, &RxClient::TakeAs<net::Update>},
    {FrameType::unsubscribed, &RxClient::TakeAs<net::Unsubscribed>},
    {FrameType::commandDone, &RxClient::TakeAs<net::CommandDone>},
    {FrameType::state, &RxClient::TakeAs<net::ServerState>},
};

RxClient::RxClient(std::unique_ptr<Channel> channel, UserIdentity user, StateChanged changed,
                   StateTold stateTold, std::chrono::milliseconds pumpTime)
    : m_channel(std::move(channel)), m_user(std::move(user)), m_changed(std::move(changed)),
      m_stateTold(std::move(stateTold)), m_pumpTime(pumpTime), m_identity(MakeIdentity()) {}
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
    std::erase_if(m_deliveries, [&](const Delivery& delivery) {
        const bool isItsOwn = delivery.control == id;
        if (isItsOwn) m_deliveryBytes -= delivery.bytes.size();
        return isItsOwn;
    });
    m_controls.erase(found);
    Say(net::CloseControl{id});
}

std::uint64_t RxClient::Send(std::uint32_t control, std::string_view bytes) {
    if (bytes.size() > net::kLongestRequest || m_requests.size() >= kMostRequests
        || m_requestBytes + bytes.size() > kMostRequestBytes)
        return 0;
    const std::uint64_t number = m_lastRequest + 1;
    m_requests.emplace(number, Unanswered{{control, number, std::string(bytes)}, m_nowMs});
    m_lastRequest = number;
    m_requestBytes += bytes.size();
    SayRequests();
    return number;
}

void RxClient::SayRequests() {
    if (m_state != LinkState::connected) return;
    for (auto next = m_requests.upper_bound(m_lastSaid);
         next != m_requests.end() && m_output.size() - m_sent < kMostOutputBytes; ++next) {
        Say(next->second.request);
        m_lastSaid = next->first;
    }
}

std::vector<std::uint64_t> RxClient::Requests() const {
    std::vector<std::uint64_t> numbers;
    numbers.reserve(m_requests.size());
    for (const auto& [number, one] : m_requests)
        numbers.push_back(number);
    return numbers;
}

std::optional<WaitingRequest> RxClient::FindRequest(std::uint64_t number) const {
    const auto found = m_requests.find(number);
    if (found == m_requests.end()) return std::nullopt;
    const Unanswered& one = found->second;
    return WaitingRequest{number, one.request.bytes, one.sinceMs, HasLeft(one)};
}

bool RxClient::Withdraw(std::uint64_t number) {
    const auto found = m_requests.find(number);
    if (found == m_requests.end() || HasLeft(found->second)) return false;
    const net::ControlRequest& request = found->second.request;
    const qmx::MessageReader reader(request.bytes);
    qmx::MessageWriter writer;
    Keep({request.control, false, Server::Refusal(writer, reader.Handle(), Withdrawn())});
    m_requestBytes -= request.bytes.size();
    m_requests.erase(found);
    return true;
}

void RxClient::Command(std::string line, CommandTold told) {
    if (m_state != LinkState::connected)
        return TellLater(std::move(told), {false, "There is no connection to the server"});
    if (m_commands.size() >= kMostCommands)
        return TellLater(std::move(told), {false, "Too many commands wait for the server"});
    const net::ServerCommand command{m_lastRequest + 1, std::move(line)};
    if (!net::Append(m_output, command, m_channel->Sums()))
        return TellLater(std::move(told), {false, "The command is too long to be sent"});
    m_commands.emplace(++m_lastRequest, std::move(told));
}

void RxClient::TellLater(CommandTold command, Told told) {
    if (!command) return;
    m_deliveries.push_back(
        {0, false, {}, [command = std::move(command), told = std::move(told)] { command(told); }});
}

std::size_t RxClient::AnswersDue() const {
    const auto isAnswer = [](const Delivery& one) { return !one.isStream && !one.tell; };
    return m_requests.size() + static_cast<std::size_t>(std::ranges::count_if(m_deliveries, isAnswer));
}

std::size_t RxClient::Waiting() const {
    return m_requests.size() + m_commands.size() + m_deliveries.size() + m_channel->Waiting();
}

void RxClient::ConnectWhenDue(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (m_state == LinkState::lost && m_nowMs >= m_againAtMs) Connect();
}

bool RxClient::Flush(std::int64_t nowMs) {
    ConnectWhenDue(nowMs);
    return Exchange();
}

void RxClient::Leave() {
    m_channel->Leave();
    if (m_state != LinkState::lost) Lose("the terminal is left");
}

std::size_t RxClient::Pump(std::int64_t nowMs) {
    ConnectWhenDue(nowMs);
    const auto end = std::chrono::steady_clock::now() + m_pumpTime;
    const auto isOver = [end] { return std::chrono::steady_clock::now() >= end; };
    std::size_t calls = 0;
    for (bool isActive = true; isActive;) {
        isActive = Exchange();
        while (!m_deliveries.empty()) {
            isActive = true;
            if (DeliverNext()) ++calls;
            if (isOver()) break;
        }
        if (!isOver()) continue;
        // What the notifiers asked for.
        Exchange();
        break;
    }
    return calls;
}

void RxClient::Connect() {
    m_reader = FrameReader(m_channel->Sums());
    m_output.clear();
    m_sent = 0;
    if (const std::string error = m_channel->Open(); !error.empty()) return Lose(error);
    m_againAtMs = m_nowMs + kConnectMs;
    m_isChallenged = false;
    Change(LinkState::connecting, "connecting to " + m_channel->Name());
}

bool RxClient::HasRoom() const {
    return m_deliveries.size() < kMostDeliveries && m_deliveryBytes < kMostDeliveryBytes;
}

bool RxClient::Exchange() {
    if (m_state == LinkState::lost) return false;
    SayRequests();
    std::string_view left = std::string_view(m_output).substr(m_sent);
    const Channel::Exchanged exchanged = m_channel->Exchange(left, HasRoom() ? &m_reader : nullptr, m_nowMs);
    m_sent = m_output.size() - left.size();
    // Moved to the front seldom: a great basket makes much output.
    if (m_sent > m_output.size() / 2) m_output.erase(0, std::exchange(m_sent, 0));
    TakeFrames();
    if (exchanged.over) Lose(exchanged.over);
    if (m_state == LinkState::connecting && m_nowMs >= m_againAtMs) Lose("the server does not answer");
    const bool hasRoom = m_sent == m_output.size() && m_state == LinkState::connected;
    return exchanged.hasMore || (hasRoom && m_requests.upper_bound(m_lastSaid) != m_requests.end());
}

void RxClient::TakeFrames() {
    while (m_state != LinkState::lost) {
        const auto frame = m_reader.Next();
        if (!frame) break;
        Take(*frame);
    }
    if (m_reader.Fault() != FrameFault::none) Lose(TextOf(m_reader.Fault()));
}

void RxClient::Take(const Frame& frame) {
    const auto step = std::ranges::find(kSteps, frame.type, &Step::type);
    if (step == std::end(kSteps)) return Lose("a frame that a terminal sends");
    const bool isGreeting = frame.type == (m_isChallenged ? FrameType::welcome : FrameType::challenge)
                            || frame.type == FrameType::connectionRefused;
    if (m_state == LinkState::connecting && !isGreeting)
        return Lose(m_isChallenged ? "a server welcomes first" : "a server challenges first");
    if (!(this->*step->take)(frame.payload)) Lose("a frame that cannot be read");
}

template <class Said>
bool RxClient::TakeAs(std::string_view payload) {
    auto said = net::Read<Said>(payload);
    if (said) On(std::move(*said));
    return said.has_value();
}

void RxClient::On(const net::Challenge& said) {
    if (std::exchange(m_isChallenged, true)) return Lose("a second challenge");
    if (said.version != net::kProtocolVersion)
        return Lose("the server speaks version " + std::to_string(said.version));
    net::Hello hello{net::kProtocolVersion, m_user.loginId, m_user.peerIdA, m_user.peerIdB, m_identity};
    if (!said.nonce.empty()) {
        const Loaded<std::string> secret = m_channel->Secret(m_user.loginId);
        if (!secret) return Lose("the server asks for a proof: " + secret.Fault().Text());
        hello.proof = ProofOf(secret.Value(), said.nonce, hello);
    }
    static_cast<void>(net::Append(m_output, std::move(hello), m_channel->Sums()));
}

void RxClient::On(const net::Welcome& said) {
    if (m_state == LinkState::connected) return Lose("a second welcome");
    if (said.version != net::kProtocolVersion)
        return Lose("the server speaks version " + std::to_string(said.version));
    m_pauseMs = 0;
    Change(LinkState::connected, "connected");
    for (const auto& [id, control] : m_controls)
        control->Introduce(m_wasConnected);
    m_wasConnected = true;
    for (auto& [number, waiting] : m_requests)
        waiting.toSkip = waiting.answers;
    SayRequests();
}

void RxClient::On(const net::ConnectionRefused& said) {
    Lose("the server refuses: " + Printable(said.text));
}

void RxClient::On(net::Response&& said) {
    const auto found = m_requests.find(said.number);
    if (found == m_requests.end() || said.number > m_lastSaid) return Lose("an answer that nobody asked for");
    Unanswered& waiting = found->second;
    if (waiting.toSkip > 0) {
        --waiting.toSkip;
        waiting.skipped = std::move(said.bytes);
        return;
    }
    ++waiting.answers;
    Keep({waiting.request.control, false, std::move(said.bytes)});
}

void RxClient::On(const net::RequestDone& said) {
    if (said.number > m_lastSaid) return Lose("the end of a request that nobody made");
    auto found = m_requests.extract(said.number);
    if (found.empty()) return Lose("the end of a request that nobody made");
    Unanswered& ended = found.mapped();
    m_requestBytes -= ended.request.bytes.size();
    // This server has less than the one before. The last answer tells the end of the rows.
    if (ended.toSkip > 0 && !ended.skipped.empty())
        Keep({ended.request.control, false, std::move(ended.skipped)});
}

void RxClient::On(net::Update&& said) {
    Keep({said.control, true, std::move(said.bytes)});
}

void RxClient::Keep(Delivery delivery) {
    m_deliveryBytes += delivery.bytes.size();
    m_deliveries.push_back(std::move(delivery));
}

void RxClient::On(const net::Unsubscribed& said) {
    const auto found = m_controls.find(said.control);
    if (found != m_controls.end()) found->second->Forget();
    Change(m_state, "a subscription was refused: " + Printable(said.text));
}

void RxClient::On(net::CommandDone&& said) {
    auto found = m_commands.extract(said.number);
    if (found.empty()) return Lose("the answer of a command that nobody gave");
    TellLater(std::move(found.mapped()), {said.isDone, Printable(said.text)});
}

void RxClient::On(net::ServerState&& said) {
    m_serverState = std::move(said);
    if (m_stateTold) m_stateTold(m_serverState);
}

void RxClient::Lose(const std::string& why) {
    if (m_state == LinkState::lost && m_nowMs < m_againAtMs) return;
    m_channel->Close();
    for (auto one = m_requests.begin(); one != m_requests.end() && one->first <= m_lastSaid; ++one)
        one->second.hasLeft = true;
    m_lastSaid = 0;
    m_pauseMs = std::clamp(m_pauseMs * 2, kShortestPauseMs, kLongestPauseMs);
    m_againAtMs = m_nowMs + m_pauseMs;
    for (auto& [number, command] : std::exchange(m_commands, {}))
        TellLater(std::move(command), {false, "The connection was lost; whether it was done is not known"});
    Change(LinkState::lost, why);
}

void RxClient::Change(LinkState state, const std::string& text) {
    m_state = state;
    if (m_changed) m_changed(state, text);
}

bool RxClient::DeliverNext() {
    // Taken out before the call: the notifier may run a message loop that pumps again.
    const Delivery next = std::move(m_deliveries.front());
    m_deliveries.pop_front();
    m_deliveryBytes -= next.bytes.size();
    return Deliver(next);
}

bool RxClient::Deliver(const Delivery& delivery) {
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

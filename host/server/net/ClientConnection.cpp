#include "host/server/net/ClientConnection.h"

#include "host/server/net/Proof.h"

#include <algorithm>
#include <random>

namespace vesk {
namespace {

constexpr std::int64_t kShortestPauseMs = 200;
constexpr std::int64_t kLongestPauseMs = 5000;
constexpr std::int64_t kConnectMs = 5000; // until the server must have welcomed
// Unsent output, from which on no request is added.
constexpr std::size_t kMostOutputBytes = std::size_t{256} * 1024;

// Under which this terminal's requests are known again, also after the server's restart.
std::uint64_t MakeIdentity() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

} // namespace

ClientConnection::ClientConnection(std::unique_ptr<Channel> channel, UserIdentity user,
                                   ConnectionListener& listener)
    : m_channel(std::move(channel)), m_user(std::move(user)), m_listener(listener), m_identity(MakeIdentity()) {
}

void ClientConnection::BeginWhenDue(std::int64_t nowMs) {
    m_nowMs = std::max(m_nowMs, nowMs);
    if (m_state == LinkState::lost && m_nowMs >= m_againAtMs) Begin();
}

void ClientConnection::Begin() {
    m_reader = FrameReader(m_channel->Sums());
    m_output.Clear();
    if (const std::string error = m_channel->Open(); !error.empty()) return Lose(error);
    m_againAtMs = m_nowMs + kConnectMs;
    m_isChallenged = false;
    Change(LinkState::connecting, "connecting to " + m_channel->Name());
}

void ClientConnection::Leave() {
    m_channel->Leave();
    if (m_state != LinkState::lost) Lose("the terminal is left");
}

void ClientConnection::Lose(const std::string& why) {
    if (m_state == LinkState::lost && m_nowMs < m_againAtMs) return;
    m_channel->Close();
    m_pauseMs = std::clamp(m_pauseMs * 2, kShortestPauseMs, kLongestPauseMs);
    m_againAtMs = m_nowMs + m_pauseMs;
    m_listener.OnLost();
    Change(LinkState::lost, why);
}

void ClientConnection::Change(LinkState state, const std::string& text) {
    m_state = state;
    m_listener.OnStateChanged(state, text);
}

bool ClientConnection::HasRoom() const {
    return m_state == LinkState::connected && m_output.Size() < kMostOutputBytes;
}

bool ClientConnection::Exchange(bool takes) {
    if (m_state == LinkState::lost) return false;
    std::string_view left = m_output.Bytes();
    const Channel::Exchanged exchanged = m_channel->Exchange(left, takes ? &m_reader : nullptr, m_nowMs);
    m_output.Take(m_output.Size() - left.size());
    TakeFrames();
    if (exchanged.over) Lose(exchanged.over);
    if (m_state == LinkState::connecting && m_nowMs >= m_againAtMs) Lose("the server does not answer");
    return exchanged.hasMore;
}

void ClientConnection::TakeFrames() {
    while (m_state != LinkState::lost) {
        const auto frame = m_reader.Next();
        if (!frame) break;
        Take(*frame);
    }
    if (m_reader.Fault() != FrameFault::none) Lose(TextOf(m_reader.Fault()));
}

void ClientConnection::Take(const Frame& frame) {
    switch (frame.type) {
    case FrameType::connectionRefused:
        return TakeAs<net::ConnectionRefused>(frame.payload);
    case FrameType::challenge:
        return TakeAs<net::Challenge>(frame.payload);
    case FrameType::welcome:
        if (!m_isChallenged) return Lose("a server challenges first");
        return TakeAs<net::Welcome>(frame.payload);
    default:
        break;
    }
    if (m_state == LinkState::connected) return m_listener.OnFrame(frame);
    Lose(m_isChallenged ? "a server welcomes first" : "a server challenges first");
}

template <class Said>
void ClientConnection::TakeAs(std::string_view payload) {
    if (const auto said = net::Read<Said>(payload))
        On(*said);
    else
        Lose("a frame that cannot be read");
}

void ClientConnection::On(const net::Challenge& said) {
    if (std::exchange(m_isChallenged, true)) return Lose("a second challenge");
    if (said.version != net::kProtocolVersion)
        return Lose("the server speaks version " + std::to_string(said.version));
    net::Hello hello{net::kProtocolVersion, m_user.loginId, m_user.peerIdA, m_user.peerIdB, m_identity};
    if (!said.nonce.empty()) {
        const Loaded<std::string> secret = m_channel->Secret(m_user.loginId);
        if (!secret) return Lose("the server asks for a proof: " + secret.Fault().Text());
        hello.proof = ProofOf(secret.Value(), said.nonce, hello);
    }
    static_cast<void>(net::Append(m_output.Back(), std::move(hello), m_channel->Sums()));
}

void ClientConnection::On(const net::Welcome& said) {
    if (m_state == LinkState::connected) return Lose("a second welcome");
    if (said.version != net::kProtocolVersion)
        return Lose("the server speaks version " + std::to_string(said.version));
    m_pauseMs = 0;
    Change(LinkState::connected, "connected");
    m_listener.OnWelcomed();
}

void ClientConnection::On(const net::ConnectionRefused& said) {
    Lose("the server refuses: " + Printable(said.text));
}

} // namespace vesk

#include "host/server/net/Channel.h"

#include <array>
#include <limits>

namespace vesk {
namespace {

constexpr const char* kEnded = "the server has ended the connection";

} // namespace

Loaded<std::string> TcpChannel::Secret(const std::string& loginId) const {
    const Loaded<Logins> logins = Logins::Load(m_secretsFile);
    if (!logins) return logins.Fault();
    if (const Login* login = logins.Value().Find(loginId)) return login->secret;
    return FileFault{std::string(FileNameOf(m_secretsFile)), 0, "no secret of " + loginId};
}

std::string TcpChannel::Open() {
    std::string error;
    m_socket = Socket::Connect(m_address.host, m_address.port, error);
    return error;
}

Channel::Exchanged TcpChannel::Exchange(std::string_view& output, FrameReader* reader, std::int64_t) {
    SocketEvents came[] = {{&m_socket, reader != nullptr, !output.empty()}};
    Wait(came, 0);
    if (!m_socket.Connected()) return {.over = "the server does not answer"};
    Transfer transfer = Transfer::some;
    while (came[0].canWrite && !output.empty() && transfer == Transfer::some)
        transfer = m_socket.Send(output);
    if (transfer == Transfer::ended) return {.over = kEnded};
    if (!came[0].canRead || !reader) return {};
    transfer = Receive(*reader);
    return {transfer == Transfer::some, transfer == Transfer::ended ? kEnded : nullptr};
}

// A connection that is closed over unread answers is broken off, and the server may then never see what is on
// its way to it.
void TcpChannel::Leave() {
    constexpr int mostWaits = 20, waitMs = 50;
    std::array<char, 65536> part;
    std::size_t got = 0;
    if (m_socket) m_socket.EndSending();
    for (int i = 0; m_socket && i < mostWaits; ++i) {
        SocketEvents came[] = {{&m_socket, true}};
        Wait(came, waitMs);
        Transfer transfer = Transfer::some;
        while (came[0].canRead && transfer == Transfer::some)
            transfer = m_socket.Receive(part, got);
        if (transfer == Transfer::ended) break;
    }
    Close();
}

Transfer TcpChannel::Receive(FrameReader& reader) {
    std::array<char, 65536> part;
    std::size_t got = 0;
    const Transfer transfer = m_socket.Receive(part, got);
    reader.Add({part.data(), got});
    return transfer;
}

std::string SessionChannel::Open() {
    SessionLimits limits;
    limits.checksum = Sums();
    // A request is flushed to the disk, and the window waits.
    limits.pumpTime = std::chrono::milliseconds(4);
    limits.streamBacklog = std::numeric_limits<std::size_t>::max();
    limits.stalledMs = std::numeric_limits<std::int64_t>::max();
    m_session = std::make_unique<ServerSession>(m_server, m_commands, limits);
    return {};
}

Channel::Exchanged SessionChannel::Exchange(std::string_view& output, FrameReader* reader, std::int64_t nowMs) {
    if (!output.empty()) m_session->Take(output, nowMs);
    output = {};
    m_session->Pump(nowMs);
    if (!reader) return {};
    ByteQueue& came = m_session->Output();
    reader->Add(came.Bytes());
    const bool hasCome = !came.IsEmpty();
    came.Clear();
    return {hasCome || m_session->HasWork(nowMs), m_session->HasEnded() ? kEnded : nullptr};
}

} // namespace vesk

// The way from a client to a trading server: bytes out, bytes in, wherever the server runs.
//
// Thread: one; every call returns at once. Failure: an exchange says why the connection is over; the channel
// can be opened again after that.
#pragma once

#include "host/files/Files.h"
#include "host/server/net/ServerSession.h"
#include "host/server/net/Socket.h"

#include <memory>
#include <string>
#include <string_view>

namespace vesk {

class Channel {
public:
    struct Exchanged {
        bool hasMore = false;       // another exchange may bring more at once
        const char* over = nullptr; // why the connection has ended
    };

    Channel() = default;
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    virtual ~Channel() = default;

    virtual std::string Name() const = 0;
    // Whether the frames have checksums, both ways.
    virtual Checksum Sums() const = 0;
    // What proves the login to a server that asks for it.
    virtual Loaded<std::string> Secret(const std::string& loginId) const = 0;
    // Begins a connection. Why it cannot; empty when it is under way.
    virtual std::string Open() = 0;
    virtual void Close() = 0;
    // Closes so that what was sent arrives, after a moment's wait where that is needed.
    virtual void Leave() { Close(); }
    // Takes what can go from the front of `output`, and gives a portion of what has come to the reader, which
    // is null while the client takes nothing.
    virtual Exchanged Exchange(std::string_view& output, FrameReader* reader, std::int64_t nowMs) = 0;
    // How much is known to be on its way to the client.
    virtual std::size_t Waiting() const = 0;
};

struct ServerAddress {
    std::string host; // a numeric address or "localhost"
    std::uint16_t port = 0;
};

// A server in another process.
class TcpChannel final : public Channel {
public:
    // The file of secrets is read for each connection: it may come later than the terminal.
    TcpChannel(ServerAddress address, std::string secretsFile)
        : m_address(std::move(address)), m_secretsFile(std::move(secretsFile)) {}

    std::string Name() const override { return m_address.host + ":" + std::to_string(m_address.port); }
    Checksum Sums() const override { return Checksum::crc32; }
    Loaded<std::string> Secret(const std::string& loginId) const override;
    std::string Open() override;
    void Close() override { m_socket = {}; }
    void Leave() override;
    Exchanged Exchange(std::string_view& output, FrameReader* reader, std::int64_t nowMs) override;
    std::size_t Waiting() const override { return 0; }

private:
    Transfer Receive(FrameReader& reader);

    const ServerAddress m_address;
    const std::string m_secretsFile;
    Socket m_socket;
};

// A server in this process, which outlives the channel. Its client is on the same thread, so it is never slow.
class SessionChannel final : public Channel {
public:
    SessionChannel(Server& server, ServerCommands& commands) : m_server(server), m_commands(commands) {}

    std::string Name() const override { return "the embedded server"; }
    Checksum Sums() const override { return Checksum::none; }
    Loaded<std::string> Secret(const std::string&) const override { return std::string(); }
    std::string Open() override;
    void Close() override { m_session.reset(); }
    Exchanged Exchange(std::string_view& output, FrameReader* reader, std::int64_t nowMs) override;
    std::size_t Waiting() const override { return m_session ? m_session->Waiting() : 0; }

private:
    Server& m_server;
    ServerCommands& m_commands;
    std::unique_ptr<ServerSession> m_session;
};

} // namespace vesk

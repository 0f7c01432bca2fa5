// A client's connection to its server: begun when it is due, proved, and again after growing pauses when it is
// lost.
//
// Thread:  the client's; every call returns at once. Lifetime: the listener outlives it.
// Failure: whatever the server sends, at worst the connection is lost; the state says why.
#pragma once

#include "host/server/net/ByteQueue.h"
#include "host/server/net/Channel.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace vesk {

enum class LinkState { connecting, connected, lost };

// Told from inside the connection's calls; it must not exchange anything.
class ConnectionListener {
public:
    virtual void OnWelcomed() = 0;
    // Behind the welcome.
    virtual void OnFrame(const Frame& frame) = 0;
    // Before the state changes.
    virtual void OnLost() = 0;
    virtual void OnStateChanged(LinkState state, const std::string& text) = 0;

protected:
    ~ConnectionListener() = default;
};

class ClientConnection {
public:
    ClientConnection(std::unique_ptr<Channel> channel, UserIdentity user, ConnectionListener& listener);

    LinkState State() const { return m_state; }
    std::int64_t NowMs() const { return m_nowMs; }
    // `nowMs` never goes back.
    void BeginWhenDue(std::int64_t nowMs);
    void Lose(const std::string& why);
    // Ends so that what has been sent arrives: waits a moment for the server to take it.
    void Leave();

    // False when it is too long. Without a server nothing is said.
    template <class Said>
    bool Say(Said said) {
        return m_state != LinkState::connected
               || net::Append(m_output.Back(), std::move(said), m_channel->Sums());
    }
    // Whether a request may be said: others wait where they can still be withdrawn.
    bool HasRoom() const;
    // Sends, and tells what has come; nothing is read when it `takes` nothing. Whether another exchange may
    // bring more at once.
    bool Exchange(bool takes);
    // Whether all that was said has gone.
    bool HasSaidAll() const { return m_state == LinkState::connected && m_output.IsEmpty(); }
    // How much is known to be on its way here.
    std::size_t Waiting() const { return m_channel->Waiting(); }

private:
    void Begin();
    void Change(LinkState state, const std::string& text);
    void TakeFrames();
    void Take(const Frame& frame);
    template <class Said>
    void TakeAs(std::string_view payload);
    void On(const net::Challenge& said);
    void On(const net::Welcome& said);
    void On(const net::ConnectionRefused& said);

    const std::unique_ptr<Channel> m_channel;
    const UserIdentity m_user;
    ConnectionListener& m_listener;
    const std::uint64_t m_identity;
    LinkState m_state = LinkState::lost;
    FrameReader m_reader;
    ByteQueue m_output;
    std::int64_t m_nowMs = 0;
    std::int64_t m_againAtMs = 0; // when to connect, or to give up connecting
    std::int64_t m_pauseMs = 0;
    bool m_isChallenged = false; // on this connection
};

} // namespace vesk

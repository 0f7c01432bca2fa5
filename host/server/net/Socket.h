// TCP sockets that never block, over the system's calls.
//
// Thread: one at a time. Owner: a Socket closes what it holds. Failure: as said at each; nothing is thrown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

enum class Transfer { some, none, ended }; // "none": it would block

class Socket {
public:
    Socket() = default;
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;
    ~Socket();

    // Takes connections of this machine only; port 0 is the system's choice. Empty with the reason in `error`.
    static Socket Listen(std::uint16_t port, std::string& error);
    // Begins to connect to a numeric address or "localhost"; Connected tells how it went, once it is writable.
    static Socket Connect(const std::string& host, std::uint16_t port, std::string& error);

    explicit operator bool() const { return m_handle != kNone; }
    // Empty when nobody waits.
    Socket Accept();
    bool Connected() const;
    std::uint16_t Port() const;
    // Empties `bytes` from its front.
    Transfer Send(std::string_view& bytes);
    Transfer Receive(std::span<char> into, std::size_t& got);
    // The other side sees the end behind what was sent; receiving goes on.
    void EndSending() const;

private:
    friend struct SocketEvents;
    friend void Wait(std::span<struct SocketEvents> sockets, int timeoutMs);
    using Handle = std::intptr_t;
    static constexpr Handle kNone = -1;

    explicit Socket(Handle handle) : m_handle(handle) {}
    void Close();

    Handle m_handle = kNone;
};

// What is waited for of one socket, and what came.
struct SocketEvents {
    const Socket* socket;
    bool toRead = false;
    bool toWrite = false;
    bool canRead = false;
    bool canWrite = false;
};
// Waits until one of them can, the time is over, or a signal comes. An end or an error counts as something to
// read.
void Wait(std::span<SocketEvents> sockets, int timeoutMs);

} // namespace vesk

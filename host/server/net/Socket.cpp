#include "host/server/net/Socket.h"

#include <algorithm>
#include <utility>
#include <vector>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace vesk {
namespace {

// The few system calls whose names differ.
#ifdef _WIN32
using Native = SOCKET;
using PollEntry = WSAPOLLFD;
using Length = int;
constexpr int kSendFlags = 0;
constexpr int kEndSending = SD_SEND;

void Start() {
    static const int started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    static_cast<void>(started);
}
int LastError() {
    return WSAGetLastError();
}
bool WouldBlock(int error) {
    return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS;
}
bool MakeNonBlocking(Native handle) {
    u_long on = 1;
    return ioctlsocket(handle, static_cast<long>(FIONBIO), &on) == 0;
}
void CloseSocket(Native handle) {
    closesocket(handle);
}
int PollSockets(PollEntry* entries, std::size_t count, int timeoutMs) {
    return WSAPoll(entries, static_cast<ULONG>(count), timeoutMs);
}
// Another program must not share the port.
constexpr int kListenOption = SO_EXCLUSIVEADDRUSE;
#else
using Native = int;
using PollEntry = pollfd;
using Length = std::size_t;
constexpr int kSendFlags = MSG_NOSIGNAL;
constexpr int kEndSending = SHUT_WR;

void Start() {}
int LastError() {
    return errno;
}
bool WouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINPROGRESS || error == EINTR;
}
bool MakeNonBlocking(Native handle) {
    return ::fcntl(handle, F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(handle, F_SETFL, O_NONBLOCK) == 0;
}
void CloseSocket(Native handle) {
    ::close(handle);
}
int PollSockets(PollEntry* entries, std::size_t count, int timeoutMs) {
    return ::poll(entries, static_cast<nfds_t>(count), timeoutMs);
}
// The port is free again at once after a server that ended.
constexpr int kListenOption = SO_REUSEADDR;
#endif

constexpr Native kInvalid = static_cast<Native>(-1);

void SwitchOn(Native handle, int level, int option) {
    const int on = 1;
    setsockopt(handle, level, option, reinterpret_cast<const char*>(&on), sizeof on);
}

Native Open() {
    Start();
    const Native handle = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (handle == kInvalid) return kInvalid;
    if (MakeNonBlocking(handle)) {
        // A request is small and waited for.
        SwitchOn(handle, IPPROTO_TCP, TCP_NODELAY);
        return handle;
    }
    CloseSocket(handle);
    return kInvalid;
}

// Also told is what the system says; its numbers differ.
std::string Because(const char* what) {
    return std::string(what) + " (error " + std::to_string(LastError()) + ")";
}

} // namespace

Socket::Socket(Socket&& other) noexcept : m_handle(std::exchange(other.m_handle, kNone)) {}
Socket& Socket::operator=(Socket&& other) noexcept {
    if (this == &other) return *this;
    Close();
    m_handle = std::exchange(other.m_handle, kNone);
    return *this;
}
Socket::~Socket() {
    Close();
}

void Socket::Close() {
    if (m_handle != kNone) CloseSocket(static_cast<Native>(m_handle));
    m_handle = kNone;
}

Socket Socket::Listen(std::uint16_t port, std::string& error) {
    Socket made(static_cast<Handle>(Open()));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto native = static_cast<Native>(made.m_handle);
    if (made) SwitchOn(native, SOL_SOCKET, kListenOption);
    if (made && bind(native, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
        && listen(native, SOMAXCONN) == 0)
        return made;
    error = Because("the port cannot be listened on");
    return {};
}

Socket Socket::Connect(const std::string& host, std::uint16_t port, std::string& error) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    const char* number = host == "localhost" ? "127.0.0.1" : host.c_str();
    if (inet_pton(AF_INET, number, &address.sin_addr) != 1) {
        error = "\"" + host + "\" is no address";
        return {};
    }
    Socket made(static_cast<Handle>(Open()));
    const auto native = static_cast<Native>(made.m_handle);
    if (made
        && (connect(native, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
            || WouldBlock(LastError())))
        return made;
    error = Because("the server cannot be reached");
    return {};
}

Socket Socket::Accept() {
    const Native taken = accept(static_cast<Native>(m_handle), nullptr, nullptr);
    if (taken == kInvalid) return {};
    Socket made(static_cast<Handle>(taken));
    if (!MakeNonBlocking(taken)) return {};
    SwitchOn(taken, IPPROTO_TCP, TCP_NODELAY);
    return made;
}

bool Socket::Connected() const {
    int fault = 0;
    socklen_t size = sizeof fault;
    return getsockopt(static_cast<Native>(m_handle), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&fault),
                      &size)
               == 0
           && fault == 0;
}

std::uint16_t Socket::Port() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(static_cast<Native>(m_handle), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

Transfer Socket::Send(std::string_view& bytes) {
    const auto sent =
        send(static_cast<Native>(m_handle), bytes.data(), static_cast<Length>(bytes.size()), kSendFlags);
    if (sent < 0) return WouldBlock(LastError()) ? Transfer::none : Transfer::ended;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
    return Transfer::some;
}

Transfer Socket::Receive(std::span<char> into, std::size_t& got) {
    got = 0;
    const auto read = recv(static_cast<Native>(m_handle), into.data(), static_cast<Length>(into.size()), 0);
    if (read < 0) return WouldBlock(LastError()) ? Transfer::none : Transfer::ended;
    got = static_cast<std::size_t>(read);
    return got ? Transfer::some : Transfer::ended;
}

void Socket::EndSending() const {
    shutdown(static_cast<Native>(m_handle), kEndSending);
}

void Wait(std::span<SocketEvents> sockets, int timeoutMs) {
    std::vector<PollEntry> entries(sockets.size());
    for (std::size_t i = 0; i < sockets.size(); ++i) {
        entries[i].fd = static_cast<Native>(sockets[i].socket->m_handle);
        entries[i].events =
            static_cast<short>((sockets[i].toRead ? POLLIN : 0) | (sockets[i].toWrite ? POLLOUT : 0));
    }
    if (PollSockets(entries.data(), entries.size(), timeoutMs) <= 0) return;
    for (std::size_t i = 0; i < sockets.size(); ++i) {
        const bool isOver = (entries[i].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
        // An end is read, whatever was waited for: else nobody would notice it and every wait would be over at
        // once.
        sockets[i].canRead = isOver || (entries[i].revents & POLLIN) != 0;
        sockets[i].canWrite = isOver || (entries[i].revents & POLLOUT) != 0;
    }
}

} // namespace vesk

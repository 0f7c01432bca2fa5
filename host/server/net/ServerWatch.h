// What a server has to do, as a line: each minute for the log, and every few seconds in a file beside its
// journal, ".status". Who runs the server reads it there and needs no login, and the server answers nobody
// more.
//
// Thread: the server's. Lifetime: net and server outlive it. Failure: a file that cannot be written is left
// out.
#pragma once

#include "host/server/net/NetServer.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vesk {

class ServerWatch {
public:
    ServerWatch(const NetServer& net, Server& server, std::filesystem::path journal, std::int64_t nowMs);
    ServerWatch(const ServerWatch&) = delete;
    ServerWatch& operator=(const ServerWatch&) = delete;
    // Takes the file away.
    ~ServerWatch();

    // Called again and again. The line for the log, once a minute; empty between. `time` is in seconds since
    // 1970.
    std::string Look(std::int64_t nowMs, std::int64_t time);

    // What the file beside the journal tells; `isCurrent` says whether a server has written it just now.
    static std::string Read(const std::filesystem::path& journal, std::int64_t time, bool& isCurrent);

private:
    std::string Line(std::int64_t nowMs);

    const NetServer& m_net;
    Server& m_server;
    const std::filesystem::path m_file;
    std::int64_t m_sinceMs, m_lookedMs;
    Traffic m_before{};          // by then
    std::vector<double> m_flush; // since then, in milliseconds
};

} // namespace vesk

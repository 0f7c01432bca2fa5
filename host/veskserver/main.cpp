// veskserver: the trading server as a program of its own.
#include "host/server/net/NetServer.h"
#include "host/veskserver/Options.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <thread>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vesk {
namespace {

constexpr int kFailed = 2;
constexpr int kWaitMs = 100;                           // until it looks whether it is to end
constexpr std::chrono::milliseconds kExecutionTime{5}; // of due instalments, between two looks at the terminals

std::atomic<bool> g_isToEnd = false; // set by a signal's handler, which has no other way
static_assert(std::atomic<bool>::is_always_lock_free);

int Fail(const std::string& why) {
    std::fprintf(stderr, "veskserver: %s\n", why.c_str());
    return kFailed;
}
void Note(const std::string& line) {
    Fail(line);
}

// Past the library's own reading, which would still hold its lock when the program ends.
void AwaitEndOfInput() {
    char ignored[256];
#ifdef _WIN32
    while (_read(0, ignored, sizeof ignored) > 0) {
    }
#else
    while (::read(0, ignored, sizeof ignored) > 0) {
    }
#endif
    g_isToEnd = true;
}

void EndOn(int signal) {
    std::signal(signal, [](int) { g_isToEnd = true; });
}

int Serve(Server& server, std::uint16_t port) {
    NetServer net(server, Note);
    if (const std::string fault = net.Listen(port); !fault.empty()) return Fail(fault);
    EndOn(SIGINT);
    EndOn(SIGTERM);
    std::thread(AwaitEndOfInput).detach();
    std::printf("listening on 127.0.0.1:%u\n", unsigned{net.Port()});
    std::fflush(stdout);
    while (!g_isToEnd) {
        net.Turn(server.HasDue() ? 0 : kWaitMs);
        const Executed done = server.ExecuteDue(kExecutionTime);
        if (!done.fault.empty()) Note(done.fault);
    }
    return 0;
}

int Run(std::span<const char* const> words) {
    ServerOptions options;
    if (const auto complaint = ReadServerOptions(words, options))
        return Fail(*complaint + "; see veskserver --help");
    if (options.help) {
        std::fwrite(kServerHelp.data(), 1, kServerHelp.size(), stdout);
        return 0;
    }
    ConfigResult config{ServerConfig{}, {}};
    if (!options.config.empty()) config = LoadServerConfig(options.config);
    if (!config.config) return Fail(config.error);
    JournalOpening opening = Journal::Open(options.journal);
    if (!opening.journal) return Fail(opening.error);
    if (!opening.warning.empty()) Note(opening.warning);
    Server server(std::move(*config.config), *opening.journal, opening.records, SystemClock());
    if (!server.ReplayError().empty()) return Fail(server.ReplayError());
    opening.text.reset();
    return Serve(server, options.port);
}

} // namespace
} // namespace vesk

int main(int count, char** words) {
    try {
        return vesk::Run({words + 1, static_cast<std::size_t>(count > 0 ? count - 1 : 0)});
    } catch (const std::exception& fault) {
        return vesk::Fail(fault.what());
    }
}

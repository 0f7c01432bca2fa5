// veskserver: the trading server as a program of its own.
#include "host/files/Files.h"
#include "host/market/TerminalConfig.h"
#include "host/server/MarketServer.h"
#include "host/server/net/ServerWatch.h"
#include "host/veskserver/Options.h"
#include "planfold_version.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vesk {
namespace {

constexpr int kFailed = 2;
constexpr int kWaitMs = 100;                      // until it looks whether it is to end
constexpr std::chrono::milliseconds kStepTime{5}; // of a journal's renewal, between two looks

std::atomic<bool> g_isToEnd = false; // set by a signal's handler, which has no other way
static_assert(std::atomic<bool>::is_always_lock_free);

int Fail(const std::string& why) {
    std::fprintf(stderr, "veskserver: %s\n", why.c_str());
    return kFailed;
}
void Note(const std::string& line) {
    Fail(line);
}

void EndOn(int signal) {
    std::signal(signal, [](int) { g_isToEnd = true; });
}

// The lines of standard input that have come, without their ends.
struct InputLines {
    std::vector<std::string> lines;
    bool isOver = false;
};

constexpr std::size_t kLongestLine = 4096; // what is behind stands in the next one

// Past the library's own reading, which would still hold its lock when the program ends.
int ReadSome(char* into, unsigned size) {
#ifdef _WIN32
    return _read(0, into, size);
#else
    return static_cast<int>(::read(0, into, size));
#endif
}

// Held by both threads, whichever ends last.
struct Shared {
    std::mutex mutex;
    InputLines come;
};

void ReadAll(const std::shared_ptr<Shared>& shared) noexcept {
    std::string line;
    char part[256];
    int got = 0;
    while ((got = ReadSome(part, sizeof part)) > 0) {
        const std::lock_guard lock(shared->mutex);
        for (const char byte : std::string_view(part, static_cast<std::size_t>(got))) {
            const bool isEnd = byte == '\n' || line.size() == kLongestLine;
            if (isEnd) shared->come.lines.push_back(std::exchange(line, {}));
            if (byte != '\n') line += byte;
        }
    }
    const std::lock_guard lock(shared->mutex);
    if (!line.empty()) shared->come.lines.push_back(std::move(line));
    shared->come.isOver = true;
}

// Starts to read, on a thread that lasts as long as the program. Each call of the answer takes what has come
// since; what cannot be read is the end.
std::function<InputLines()> ReadInput() {
    auto shared = std::make_shared<Shared>();
    std::thread(ReadAll, shared).detach();
    return [shared] {
        const std::lock_guard lock(shared->mutex);
        return InputLines{std::exchange(shared->come.lines, {}), shared->come.isOver};
    };
}

// What of the terminal's files a server can use.
struct Market {
    ScripMaster master;
    ClientList clients;
    TradingCalendar calendar;
    TerminalConfig terminal;
};

// A missing file is done without; a bad one throws where and why.
template <class T>
void Take(const std::string& path, T& target) {
    Loaded<T> loaded = T::Load(path);
    std::error_code error;
    if (loaded)
        target = std::move(loaded.Value());
    else if (std::filesystem::exists(PathOf(path), error))
        throw std::runtime_error(loaded.Fault().Text());
    else
        Note(loaded.Fault().Text());
}

Market LoadMarket(const std::string& data) {
    Market market;
    if (data.empty()) return market;
    Take(data + "/scrips.csv", market.master);
    Take(data + "/clients.csv", market.clients);
    Take(data + "/nontrading.csv", market.calendar);
    Take(data + "/terminal.json", market.terminal);
    return market;
}

// Who gives the commands of standard input.
UserIdentity Operator(const TerminalConfig& terminal) {
    return {terminal.loginId.empty() ? "DEALER01" : terminal.loginId, terminal.peerIdA, terminal.peerIdB};
}

void Answer(const std::vector<std::string>& lines, ServerCommands& commands, const UserIdentity& user) {
    for (const std::string& line : lines)
        std::printf("%s\n", Printable(commands.Run(line, user, SteadyMs()).text).c_str());
    if (!lines.empty()) std::fflush(stdout);
}

int Serve(MarketServer& marketServer, const ServerOptions& options, const UserIdentity& user,
          const SessionLimits& limits) {
    Server& server = marketServer.Serving();
    Clockwork& clock = server.Clock();
    NetServer net(server, marketServer.Commands(), Note, limits);
    if (const std::string fault = net.Listen(options.port); !fault.empty()) return Fail(fault);
    EndOn(SIGINT);
    EndOn(SIGTERM);
    const auto takeInput = ReadInput();
    std::printf("listening on 127.0.0.1:%u\n", unsigned{net.Port()});
    std::fflush(stdout);
    ServerWatch watch(net, server, PathOf(options.journal), SteadyMs());
    while (!g_isToEnd) {
        if (const std::string line = watch.Look(SteadyMs(), std::time(nullptr)); !line.empty()) Note(line);
        const bool isBehind = net.IsBehind();
        net.Turn(isBehind                                         ? 1
                 : clock.HasDue() || server.Upkeep().IsUnderWay() ? 0
                                                                  : kWaitMs,
                 [&] {
                     // Some at a time: what is asked for meanwhile waits for what they make.
                     if (isBehind) return;
                     const Executed done = clock.ExecuteDue({});
                     if (!done.fault.empty()) Note(done.fault);
                 });
        const InputLines input = takeInput();
        Answer(input.lines, marketServer.Commands(), user);
        if (input.isOver) break;
        if (const std::string note = server.Upkeep().RenewWhenStale(kStepTime); !note.empty()) Note(note);
    }
    net.FinishRest();
    return 0;
}

int CheckJournal(const std::string& name) {
    constexpr int faulty = 1;
    const auto text = ReadWholeFile(name);
    if (!text) return Fail(text.Fault().Text());
    std::vector<std::string> faults = FindJournalFaults(text.Value());
    const auto head = ReadWholeFile(name + ".head");
    const std::string missing = head ? MissingBy(head.Value(), ReadJournalText(text.Value())) : "";
    if (faults.empty() && !missing.empty()) faults.push_back(missing);
    for (const std::string& fault : faults)
        std::printf("%s\n", fault.c_str());
    return faults.empty() ? 0 : faulty;
}

int TellStatus(const std::string& name) {
    constexpr int absent = 1;
    bool isCurrent = false;
    std::printf("%s\n", ServerWatch::Read(PathOf(name), std::time(nullptr), isCurrent).c_str());
    return isCurrent ? 0 : absent;
}

int Run(std::span<const std::string> words) {
    ServerOptions options;
    if (const auto complaint = ReadServerOptions(words, options))
        return Fail(*complaint + "; see veskserver --help");
    if (options.help) {
        std::fwrite(kServerHelp.data(), 1, kServerHelp.size(), stdout);
        return 0;
    }
    if (options.tellsVersion) {
        std::puts("veskserver " PLANFOLD_VERSION);
        return 0;
    }
    if (options.tellsStatus) return TellStatus(options.journal);
    if (options.checksJournal) return CheckJournal(options.journal);
    ConfigResult config{ServerConfig{}, {}};
    if (!options.config.empty()) config = LoadServerConfig(options.config);
    if (!config.config) return Fail(config.error);
    const Market market = LoadMarket(options.data);
    JournalOpening opening = Journal::Open(PathOf(options.journal));
    if (!opening.journal) return Fail(opening.error);
    if (!opening.warning.empty()) Note(opening.warning);
    MarketServer server(std::move(opening), std::move(*config.config), market.master, market.clients,
                        market.calendar, true);
    if (!server.Serving().Journal().ReplayError().empty())
        return Fail(server.Serving().Journal().ReplayError());
    std::string made;
    const UserIdentity user = Operator(market.terminal);
    options.logins.insert(options.logins.begin(), user);
    const std::string secrets = SecretsBeside(options.journal);
    const Loaded<Logins> logins = Logins::LoadWith(secrets, options.logins, made);
    if (!logins) return Fail(logins.Fault().Text());
    if (!made.empty()) Note("made in " + secrets + ": the secret of " + made);
    SessionLimits limits;
    limits.logins = &logins.Value();
    limits.takesCommands = options.takesCommands;
    return Serve(server, options, user, limits);
}

} // namespace
} // namespace vesk

int main(int count, char** words) {
    try {
        return vesk::Run(vesk::CommandWords(count, words));
    } catch (const std::exception& fault) {
        return vesk::Fail(fault.what());
    }
}

// veskserver: the trading server as a program of its own.
#include "host/files/Files.h"
#include "host/market/TerminalConfig.h"
#include "host/market/TradingCalendar.h"
#include "host/server/net/NetServer.h"
#include "host/server/sample/MarketOfServer.h"
#include "host/veskserver/InputLines.h"
#include "host/veskserver/Options.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>

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

void EndOn(int signal) {
    std::signal(signal, [](int) { g_isToEnd = true; });
}

// What of the terminal's files a server can use.
struct Market {
    ScripMaster master;
    ClientList clients;
    TradingCalendar calendar;
    TerminalConfig terminal;
};

template <class T>
void Take(Loaded<T> loaded, T& target) {
    if (loaded)
        target = std::move(loaded.Value());
    else
        Note(loaded.Fault().Text());
}

Market LoadMarket(const std::string& data) {
    Market market;
    if (data.empty()) return market;
    Take(ScripMaster::Load(data + "/scrips.csv"), market.master);
    Take(ClientList::Load(data + "/clients.csv"), market.clients);
    Take(TradingCalendar::Load(data + "/nontrading.csv"), market.calendar);
    Take(TerminalConfig::Load(data + "/terminal.json"), market.terminal);
    return market;
}

// Who gives the commands of standard input.
UserIdentity Operator(const TerminalConfig& terminal) {
    return {terminal.loginId.empty() ? "DEALER01" : terminal.loginId, terminal.peerIdA, terminal.peerIdB};
}

void Answer(const std::vector<std::string>& lines, ServerCommands& commands, const UserIdentity& user) {
    for (const std::string& line : lines)
        std::printf("%s\n", commands.Run(line, user, SteadyMs()).text.c_str());
    if (!lines.empty()) std::fflush(stdout);
}

int Serve(Server& server, std::uint16_t port, const Market& market) {
    ServerCommands commands(server, SampleMarketOf(market.master, market.clients), true);
    NetServer net(server, commands, Note);
    if (const std::string fault = net.Listen(port); !fault.empty()) return Fail(fault);
    EndOn(SIGINT);
    EndOn(SIGTERM);
    const auto takeInput = ReadInput();
    const UserIdentity user = Operator(market.terminal);
    std::printf("listening on 127.0.0.1:%u\n", unsigned{net.Port()});
    std::fflush(stdout);
    while (!g_isToEnd) {
        const bool isBehind = net.IsBehind();
        net.Turn(isBehind ? 1 : server.Clock().HasDue() ? 0 : kWaitMs);
        const InputLines input = takeInput();
        Answer(input.lines, commands, user);
        if (input.isOver) return 0;
        if (isBehind) continue;
        const Executed done = server.Clock().ExecuteDue(kExecutionTime);
        if (!done.fault.empty()) Note(done.fault);
    }
    return 0;
}

int Run(std::span<const std::string> words) {
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
    const Market market = LoadMarket(options.data);
    config.config->nonTrading = DatesOf(market.calendar.Dates());
    JournalOpening opening = Journal::Open(PathOf(options.journal));
    if (!opening.journal) return Fail(opening.error);
    if (!opening.warning.empty()) Note(opening.warning);
    Server server(std::move(*config.config), *opening.journal, opening.records, SystemClock());
    if (!server.ReplayError().empty()) return Fail(server.ReplayError());
    opening.records.clear();
    opening.text.reset();
    server.Clock().SetPrices(PricesOf(market.master));
    server.SetClients(ClientsOf(market.clients));
    if (const std::string note = server.CompactWhenStale(); !note.empty()) Note(note);
    return Serve(server, options.port, market);
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

// planfold_net_bench [ORDERS]
//
// Terminals without windows at one server over TCP that holds 100,000 registrations: how many updates a second
// reach them while one of them places orders as fast as they are answered, several at a time, and how long it
// takes from a request to the update at the others while it places them one at a time. The latter once more
// while the clock has gone on some days and the server executes what is due, with how many of its updates reach
// them.

#include "host/server/net/NetServer.h"
#include "host/server/net/RxClient.h"
#include "host/server/sample/SampleOrders.h"
#include "tests/server/Requests.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <list>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using namespace vesk;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kTerminals = 50;
constexpr std::size_t kRegistrations = 100'000;
constexpr std::size_t kAtATime = 16;
constexpr std::size_t kUsualOrders = 2'000;

std::int64_t NowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

// The server on a thread of its own, in a folder of its own.
class ServerThread {
public:
    ServerThread()
        : m_folder(std::filesystem::temp_directory_path() / ("net-bench-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
        m_opening = Journal::Open(m_folder / "journal");
        m_server.emplace(ServerConfig{}, *m_opening.journal, m_opening.records, SystemClock());
        Fill(*m_server,
             {kRegistrations, {{"DEALER", "B", ""}}, {{"C001"}, {{"nse_cm", "1013", "ARBORTOOLS-EQ"}}}});
        m_commands.emplace(*m_server, SampleMarket{{"C001"}, {{"nse_cm", "1013", "ARBORTOOLS-EQ"}}}, true);
        m_net.emplace(
            *m_server, *m_commands, [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); },
            SessionLimits{.loginSessions = kTerminals});
        m_net->Listen(0);
        m_port = m_net->Port();
        m_thread = std::thread([this] {
            while (!m_isToEnd) {
                const bool isBehind = m_net->IsBehind();
                m_net->Turn(isBehind                     ? 1
                            : m_server->Clock().HasDue() ? 0
                                                         : 10,
                            [&] {
                                if (!isBehind) m_executed += m_server->Clock().ExecuteDue({}).instalments;
                            });
            }
        });
    }
    ~ServerThread() {
        m_isToEnd = true;
        m_thread.join();
        std::filesystem::remove_all(m_folder);
    }
    std::uint16_t Port() const { return m_port; }
    std::size_t Executed() const { return m_executed; }

private:
    std::filesystem::path m_folder;
    JournalOpening m_opening;
    std::optional<Server> m_server;
    std::optional<ServerCommands> m_commands;
    std::optional<NetServer> m_net;
    std::uint16_t m_port = 0;
    std::atomic<bool> m_isToEnd = false;
    std::atomic<std::size_t> m_executed = 0;
    std::thread m_thread;
};

class Terminal final : public CKeloRxNotifierBase {
public:
    explicit Terminal(std::uint16_t port)
        : m_client(std::make_unique<TcpChannel>(ServerAddress{"localhost", port}, ""), {"DEALER", "B", ""}, {}),
          m_requests(m_client.Get(kRxRequests, this)), m_stream(m_client.Get(kRxIdentityStream, this)) {
        const std::uint32_t tag = tag::loginId;
        const QmxDatum own{};
        m_stream->Subscribe(nullptr, &tag, &own, 1, m_stream, 0, 0, 1, nullptr);
        Send("get_sip_operation_mode");
    }

    void Send(const Fields& fields) {
        const std::string bytes = Message(fields);
        m_requests->SendRequest(nullptr, qmx::MessageReader(bytes).Handle(), 0, nullptr);
    }
    void Place(std::size_t number) {
        m_order[tag::orderId] = "order-" + std::to_string(number);
        Send(m_order);
    }
    void Pump() { m_client.Pump(NowMs()); }
    std::size_t Waiting() const { return m_client.Waiting(); }

    void Advance(int days) { m_client.Command("clock " + std::to_string(days), {}); }
    bool HasDue() const { return m_client.Server().hasDue; }

    void OnBroadcast(void* message, std::uint32_t, void*) override {
        if (!qmx::Text(message, tag::orderId).starts_with("order-")) {
            ++others;
            return;
        }
        ++updates;
        updatedAt = Clock::now();
    }
    void OnResponse(void*, void* message, void*) override {
        if (qmx::Has(message, tag::errorCode)) std::fprintf(stderr, "%s\n", qmx::Dump(message).c_str());
    }

    std::size_t updates = 0; // of the orders
    std::size_t others = 0;
    Clock::time_point updatedAt;

private:
    Fields m_order = Order("loginId=DEALER account=C001 startDate=4070908800 peerIdA= operationMode=");
    RxClient m_client;
    RxControl* m_requests;
    RxControl* m_stream;
};

class Room {
public:
    explicit Room(std::uint16_t port) {
        for (std::size_t i = 0; i < kTerminals; ++i)
            m_terminals.emplace_back(port);
        Until(
            [&] { return std::ranges::all_of(m_terminals, [](Terminal& one) { return one.Waiting() == 0; }); });
    }

    // Updates a second, at all terminals together.
    double Throughput(std::size_t orders) {
        const auto start = Clock::now();
        const std::size_t end = m_placed + orders;
        Until([&] {
            while (m_placed < end && m_terminals.front().Waiting() < kAtATime)
                m_terminals.front().Place(m_placed++);
            return HaveAll();
        });
        return static_cast<double>(orders * kTerminals)
               / std::chrono::duration<double>(Clock::now() - start).count();
    }
    // Of each order at each other terminal, in order, in milliseconds.
    std::vector<double> Latencies(std::size_t orders) {
        std::vector<double> all;
        for (std::size_t i = 0; i < orders; ++i)
            PlaceOne(all);
        std::ranges::sort(all);
        return all;
    }
    // The same until what falls due in the next days is executed and told. The updates are those of that.
    std::vector<double> LatenciesBeside(int days, std::size_t& updates) {
        std::vector<double> all;
        for (Terminal& terminal : m_terminals)
            terminal.others = 0;
        m_terminals.front().Advance(days);
        Until([&] { return m_terminals.front().HasDue(); });
        while (std::ranges::any_of(m_terminals, &Terminal::HasDue))
            PlaceOne(all);
        std::ranges::sort(all);
        for (const Terminal& terminal : m_terminals)
            updates += terminal.others;
        return all;
    }

private:
    void PlaceOne(std::vector<double>& all) {
        const auto start = Clock::now();
        m_terminals.front().Place(m_placed++);
        Until([&] { return HaveAll(); });
        for (auto one = std::next(m_terminals.begin()); one != m_terminals.end(); ++one)
            all.push_back(std::chrono::duration<double, std::milli>(one->updatedAt - start).count());
    }
    bool HaveAll() const {
        return std::ranges::all_of(m_terminals, [&](const Terminal& one) { return one.updates == m_placed; });
    }
    template <class Condition>
    void Until(Condition condition) {
        while (!condition())
            for (Terminal& terminal : m_terminals)
                terminal.Pump();
    }

    std::list<Terminal> m_terminals;
    std::size_t m_placed = 0;
};

void Print(const std::vector<double>& latencies) {
    std::printf("median latency       %10.2f ms\n", latencies[latencies.size() / 2]);
    std::printf("99th percentile      %10.2f ms\n", latencies[latencies.size() * 99 / 100]);
}

} // namespace

int main(int count, char** arguments) {
    const std::size_t orders = count > 1 ? std::stoul(arguments[1]) : kUsualOrders;
    const ServerThread server;
    Room room(server.Port());
    std::printf("%zu terminals, %zu registrations\n", kTerminals, kRegistrations);
    std::printf("updates a second     %10.0f\n", room.Throughput(orders));
    Print(room.Latencies(orders));

    constexpr int days = 5;
    const auto start = Clock::now();
    std::size_t updates = 0;
    const std::size_t before = server.Executed();
    const std::vector<double> beside = room.LatenciesBeside(days, updates);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::printf("beside %zu instalments of %d days in %.1f s\n", server.Executed() - before, days, seconds);
    std::printf("updates a second     %10.0f\n", static_cast<double>(updates) / seconds);
    Print(beside);
}

// attack_test SERVER [--orders N] [--seed N]
//
// 50 terminals place orders at a server, first among themselves and then beside attackers: such as say nothing,
// speak slowly, rave, replay what others have said, and come in floods, and one with a login of its own that
// asks without end and never reads. All 50 have to get the right answers, and nobody else's.
// Printed is how long the answers took; that is asserted nowhere.

#include "host/server/net/Proof.h"
#include "tests/net/NetFixture.h"
#include "tests/net/ServerProcess.h"

#include <list>
#include <random>
#include <set>
#include <sys/prctl.h>

namespace vesk {
namespace {

constexpr std::size_t kWorkers = 50, kAtFirst = 40; // the others come again when the attackers are there
constexpr const char* kInsider = "INSIDER";
using SteadyClock = std::chrono::steady_clock;

// Places its orders one by one, each after the answer, and then lists them.
class Worker {
public:
    Worker(const ServerPlace& place, std::string login)
        : m_login(std::move(login)), m_terminal(place, m_login) {
        m_terminal.onAnswer = [this](void* message) { OnAnswer(message); };
        m_terminal.onUpdate = [this](void* message) {
            m_streamed.emplace(qmx::Text(message, tag::registrationNumber));
        };
        Demand(m_terminal.Subscribe(tag::loginId, ""), "no stream");
    }
    void Begin(std::size_t orders, bool comesAgain) {
        m_left = orders;
        latencies.clear();
        m_isListed = false;
        m_breaks = m_terminal.states.size();
        if (comesAgain) m_terminal.Client().Leave();
        m_mayBreak = comesAgain || m_breaks == 0;
        Place();
    }
    void Pump() { m_terminal.Pump(); }
    bool IsDone() const { return m_isListed && m_numbers.size() <= m_streamed.size(); }
    void Judge() const {
        Demand(m_streamed == m_numbers, m_login + " was streamed others' orders");
        Demand(m_mayBreak || m_terminal.states.size() == m_breaks, m_login + " was thrown out");
    }

    std::vector<double> latencies; // ms

private:
    void Place() {
        m_sentAt = SteadyClock::now();
        Demand(m_terminal.Place(m_login + "-" + std::to_string(++m_orders)), "an order cannot be sent");
    }
    void OnAnswer(void* message) {
        const std::string number(qmx::Text(message, tag::registrationNumber));
        if (qmx::Has(message, tag::queriedRow)) {
            Demand(m_numbers.contains(number), m_login + " was listed another's order");
            ++m_rows;
        } else if (qmx::Text(message, tag::echoedRequest) == "om_get_sip_orders") {
            Demand(m_rows == m_numbers.size(), m_login + " was not listed all its orders");
            m_isListed = true;
        } else {
            const std::chrono::duration<double, std::milli> took = SteadyClock::now() - m_sentAt;
            latencies.push_back(took.count());
            Demand(!qmx::Has(message, tag::errorCode) && m_numbers.insert(number).second, "a wrong answer");
            if (--m_left > 0) return Place();
            m_rows = 0;
            Demand(m_terminal.Send("om_get_sip_orders loginId=" + m_login), "a query cannot be sent");
        }
    }

    std::string m_login;
    Terminal m_terminal;
    std::set<std::string> m_numbers, m_streamed;
    std::size_t m_orders = 0, m_left = 0, m_rows = 0, m_breaks = 0;
    bool m_isListed = false, m_mayBreak = false;
    SteadyClock::time_point m_sentAt;
};

// In a process of its own until that is killed.
class Attackers {
public:
    Attackers(std::uint16_t port, const Logins& logins, unsigned seed)
        : m_port(port), m_secret(logins.Find(kInsider)->secret), m_random(seed) {}

    [[noreturn]] void Go() {
        constexpr std::size_t silent = 300, slow = 50, atATime = 8;
        for (;;) {
            while (m_silent.size() < silent)
                m_silent.push_back(Connect());
            while (m_slow.size() < slow)
                m_slow.push_back({Connect(), Rubbish(), 0});
            for (Slow& one : m_slow)
                if (one.socket && one.said < one.bytes.size()) Say(one.socket, one.bytes.substr(one.said++, 1));
            for (std::size_t i = 0; i < atATime; ++i)
                Say(m_flood.emplace_back(Connect()), Rubbish());
            while (m_flood.size() > 4 * atATime)
                m_flood.pop_front();
            Flood();
            // Who was thrown out comes again.
            m_silent.pop_front(), m_slow.pop_front();
            usleep(2000);
        }
    }

private:
    struct Slow {
        Socket socket;
        std::string bytes;
        std::size_t said;
    };

    Socket Connect() const {
        std::string error;
        return Socket::Connect("localhost", m_port, error);
    }
    static bool Say(Socket& socket, std::string_view bytes) {
        return socket && socket.Send(bytes) == Transfer::some;
    }
    std::string Random(std::size_t most) {
        std::string bytes(m_random() % most, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(m_random());
        return bytes;
    }
    net::Hello Hello(const std::string& login) {
        return {net::kProtocolVersion, login, login == kInsider ? "" : "BROKER", "", m_random(), {}};
    }
    std::string Rubbish() {
        net::Hello hello = Hello("W" + std::to_string(m_random() % kWorkers));
        hello.proof = Random(64);
        switch (m_random() % 6) {
        case 0:
            return Random(5000);
        case 1:
            return Framed(hello) + Framed(net::OpenControl{1, 0})
                   + Framed(net::ControlRequest{1, 1, Message(Order("orderId=stranger"))});
        case 2:
            hello.loginId = "\x1B[2J\r\n" + Random(200);
            return Framed(hello);
        case 3:
            return Framed(static_cast<FrameType>(1 + m_random() % 16), Random(3000));
        case 4:
            return m_said + m_said; // what another connection was proved with
        default:
            return std::string("\xFF\xFF\x00\x00", 4) + Random(20000);
        }
    }
    // One that is let in, and neither reads nor stops.
    void Flood() {
        if (!m_insider) {
            m_insider = Connect();
            SocketEvents came[] = {{&m_insider, true}};
            Wait(came, 20);
            std::array<char, 4096> part;
            std::size_t got = 0;
            FrameReader reader;
            if (m_insider.Receive(part, got) == Transfer::some) reader.Add({part.data(), got});
            const auto frame = reader.Next();
            const auto challenge = frame ? net::Read<net::Challenge>(frame->payload) : std::nullopt;
            if (!challenge) return void(m_insider = {});
            net::Hello hello = Hello(kInsider);
            hello.proof = ProofOf(m_secret, challenge->nonce, hello);
            m_said = Framed(hello) + Framed(net::OpenControl{1, 0}) + Framed(net::OpenControl{2, 1});
            Say(m_insider, m_said);
        }
        std::string asked;
        for (int i = 0; i < 50; ++i)
            asked += Framed(net::Subscribe{2, 1, false, {{tag::loginId, "W1"}}})
                     + Framed(net::ServerCommand{++m_number, "clock 2099-01-01"})
                     + Framed(net::ControlRequest{
                         1, ++m_number, Message(Fields("qry_eq_sip startDate=1/1/2020 toDate=1/1/2090"))});
        if (!Say(m_insider, asked) && m_random() % 100 == 0) m_insider = {};
    }

    const std::uint16_t m_port;
    const std::string m_secret;
    std::mt19937 m_random;
    std::list<Socket> m_silent, m_flood;
    std::list<Slow> m_slow;
    Socket m_insider;
    std::string m_said;
    std::uint64_t m_number = 0;
};

void Play(const char* name, std::list<Worker>& workers, std::size_t orders, bool isAttacked) {
    constexpr std::int64_t longestMs = 25'000;
    std::size_t place = 0;
    for (Worker& worker : workers)
        worker.Begin(orders, isAttacked && place++ >= kAtFirst);
    const std::int64_t start = SteadyMs();
    while (!std::ranges::all_of(workers, &Worker::IsDone)) {
        Demand(SteadyMs() - start < longestMs, std::string(name) + ": not all terminals were answered");
        for (Worker& worker : workers)
            worker.Pump();
        usleep(200);
    }
    std::vector<double> all;
    for (const Worker& worker : workers) {
        worker.Judge();
        all.insert(all.end(), worker.latencies.begin(), worker.latencies.end());
    }
    std::ranges::sort(all);
    std::printf("%-17s %5zu orders in %5.1f s, median %7.2f ms, 99th percentile %7.2f ms\n", name, all.size(),
                static_cast<double>(SteadyMs() - start) / 1000, all[all.size() / 2],
                all[all.size() * 99 / 100]);
    std::fflush(stdout);
}

} // namespace
} // namespace vesk

int main(int count, char** words) {
    using namespace vesk;
    std::map<std::string, std::string> options{{"--orders", "12"}, {"--seed", "1"}};
    for (int i = 2; i + 1 < count; i += 2)
        options[words[i]] = words[i + 1];
    Demand(count > 1, "which server?");
    const auto folder = std::filesystem::temp_directory_path() / ("vesk-attack-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    WriteFileText(folder / "server.json", "{}");
    const std::string secrets = SecretsBeside((folder / "journal").string());
    Logins logins;
    logins.Add({kInsider, "", ""});
    for (std::size_t i = 0; i < kWorkers; ++i)
        logins.Add({"W" + std::to_string(i), "BROKER", ""});
    Demand(logins.Write(secrets).empty(), "no secrets");
    {
        ServerProcess server(words[1], folder.string(), 0, {});
        std::list<Worker> workers;
        for (std::size_t i = 0; i < kWorkers; ++i)
            workers.emplace_back(ServerPlace{server.Port(), secrets}, "W" + std::to_string(i));
        const std::size_t orders = std::stoul(options["--orders"]);
        Play("among themselves", workers, orders, false);
        const pid_t attackers = fork();
        if (attackers == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            Attackers(server.Port(), logins, static_cast<unsigned>(std::stoul(options["--seed"]))).Go();
        }
        usleep(500'000);
        Play("beside attackers", workers, orders, true);
        int state = 0;
        kill(attackers, SIGKILL);
        waitpid(attackers, &state, 0);
        Demand(WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL, "the attackers ended by themselves");
    }
    const std::string log = FileText(folder / "server.log");
    Demand(std::ranges::all_of(log, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }),
           "the log has characters that are not printable");
    std::printf("%zu bytes of log\n", log.size());
    std::filesystem::remove_all(folder);
}

// kill_test SERVER [--kills N] [--seed N]
//
// Terminals place and change orders under load while the server's clock moves, and the server or a terminal is
// killed at random moments and started again. In the end every order and change that was acknowledged is there
// once, what a killed terminal had not been told of once or not at all, and the instalments of every plan are
// one a day, without a gap, and none on a closed day.

#include "tests/net/KillDealer.h"
#include "tests/net/NetFixture.h"

#include "host/server/Schedule.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <list>
#include <random>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace vesk {
namespace {

using std::chrono::sys_days;
using Words = std::vector<std::string>;

[[noreturn]] void Die(const std::string& what) {
    std::fprintf(stderr, "kill_test: %s\n", what.c_str());
    std::_Exit(1);
}
void Demand(bool holds, const std::string& what) {
    if (!holds) Die(what);
}

// A program with its ends of two pipes.
class Child {
public:
    Child(const Words& words, const std::string& errors) {
        int in[2], out[2];
        Demand(pipe2(in, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0, "no pipes");
        std::vector<char*> arguments;
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const int file = open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        m_id = fork();
        if (m_id == 0) {
            dup2(in[0], 0), dup2(out[1], 1), dup2(file, 2);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        close(in[0]), close(out[1]), close(file);
        m_input = in[1], m_output = out[0];
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { close(m_input), close(m_output); }

    int Output() const { return m_output; }
    void Tell() { Demand(write(m_input, "\n", 1) == 1, "a program does not listen"); }
    void CloseInput() { close(std::exchange(m_input, -1)); }
    // It must have been at work until now.
    void Kill() {
        kill(m_id, SIGKILL);
        const int state = Await();
        Demand(WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL, "a program ended before it was killed");
    }
    int Await() const {
        int state = 0;
        waitpid(m_id, &state, 0);
        return state;
    }

private:
    pid_t m_id = 0;
    int m_input = -1, m_output = -1;
};

class ServerProcess {
public:
    ServerProcess(const std::string& program, const std::string& folder, std::uint16_t port)
        : m_child({program, "--port", std::to_string(port), "--data", folder}, folder + "/server.log") {
        std::string line;
        for (char byte = 0; byte != '\n' && read(m_child.Output(), &byte, 1) == 1;)
            line += byte;
        Demand(line.starts_with("listening on 127.0.0.1:"), "the server did not start");
        m_port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }
    ~ServerProcess() { m_child.Kill(); }
    std::uint16_t Port() const { return m_port; }

private:
    Child m_child;
    std::uint16_t m_port = 0;
};

class DealerProcess {
public:
    DealerProcess(const Words& words, const std::string& folder)
        : m_child(words, folder + "/dealers.log"), m_reader([this] { Listen(); }) {}

    void Kill() {
        m_child.Kill();
        m_reader.join();
        m_wasKilled = true;
    }
    void AskNoMore() { m_child.Tell(); }
    bool IsQuiet() const { return m_isQuiet; }
    void End() {
        m_child.CloseInput();
        Demand(m_child.Await() == 0, "a dealer did not end well");
        m_reader.join();
    }
    bool WasKilled() const { return m_wasKilled; }
    // All lines, once it has ended.
    const std::string& Said() const { return m_said; }

private:
    void Listen() {
        char part[65536];
        for (ssize_t got; (got = read(m_child.Output(), part, sizeof part)) > 0;) {
            m_said.append(part, static_cast<std::size_t>(got));
            if (m_said.ends_with("\nq\n")) m_isQuiet = true;
        }
    }

    std::string m_said;
    std::atomic<bool> m_isQuiet = false;
    bool m_wasKilled = false;
    Child m_child;
    std::thread m_reader;
};

struct State {
    std::string status = "active", amount = "123450";

    bool Is(const Registration& registration) const {
        const std::string_view now = registration.Text(kTagStatus);
        return registration.Text(kTagAmountOrQuantity) == amount
               && (now == status || (now == kStatusExpired && status == kStatusActive));
    }
};

// What the server holds in the end, against what was said.
class Verdict {
public:
    Verdict(Server& server, const std::vector<std::chrono::year_month_day>& closed)
        : m_server(server), m_closed(closed.begin(), closed.end()) {
        for (const Registration& registration : server.Registrations()) {
            std::string id(registration.Text(kTagRequestIdentifier));
            // A cancellation has put its own there.
            if (id.ends_with('x')) id.pop_back();
            Demand(m_byId.emplace(id, registration.Number()).second, id + " is there twice");
        }
    }

    void Hear(const DealerProcess& dealer) {
        std::istringstream lines(dealer.Said());
        std::map<std::string, State> held,
            pending; // as the last answer said; as was asked for and not answered
        std::map<std::string, Words> heard;
        std::set<std::string> unanswered; // orders
        std::size_t seen = 0;
        std::string text;
        while (std::getline(lines, text)) {
            Words words;
            std::istringstream line(text);
            for (std::string word; line >> word;)
                words.push_back(word);
            const char kind = text[0];
            if (kind == 'p') {
                m_asked.insert(words.at(1)), unanswered.insert(words[1]);
            } else if (kind == 'P') {
                Demand(m_byId[words.at(1)] == words.at(2), words[2] + " is gone");
                Demand(unanswered.erase(words[1]) == 1, words[1] + " was answered twice");
                held[words[2]];
            } else if (kind == 'c') {
                pending[words.at(1)] = {words.at(2), words.at(3)};
                if (words[2] == kStatusPaused) m_paused.insert(words[1]);
            } else if (kind == 'C') {
                const auto change = pending.extract(words.at(1));
                Demand(!change.empty(), words[1] + ": a change was answered twice");
                if (words.at(2) == "done") held[words[1]] = change.mapped();
            } else if (kind == 's') {
                heard[words.at(1)] = {words.at(2), words.at(3)};
                Demand(words[3] <= Next(words[1]), words[1] + ": an instalment that was told is gone");
            } else if (kind == 'o') {
                Demand(DaysOf(words.at(1)).contains(words.at(2)), words[2] + " is gone");
                ++seen;
            }
        }
        Demand(dealer.WasKilled() || (unanswered.empty() && pending.empty()), "something was not answered");
        for (const auto& [number, state] : held)
            Demand(state.Is(Found(number)) || (pending.contains(number) && pending[number].Is(Found(number))),
                   number + " is not what was answered");
        for (const auto& [number, last] : heard)
            Demand(dealer.WasKilled()
                       || last == Words{std::string(Found(number).Text(kTagStatus)), Next(number)},
                   number + " was not told by the stream as it is");
        m_told += held.size(), m_seen += seen;
    }

    // One instalment a day from the first on; a pause leaves days out.
    void JudgeAll() {
        std::set<std::string> orders;
        std::size_t count = 0;
        for (const auto& [id, number] : m_byId) {
            Demand(m_asked.contains(id), number + " is no dealer's");
            const Registration& registration = Found(number);
            std::set<sys_days> days;
            for (const auto& [order, day] : DaysOf(number)) {
                Demand(orders.insert(order).second, order + " is there twice");
                Demand(days.insert(day).second, number + ": two instalments on a day");
                Demand(IsOpen(day), number + ": an instalment on a closed day");
            }
            const auto executed = static_cast<std::size_t>(registration.progress.executed);
            const auto periods = std::stoul(std::string(registration.Text(kTagPeriods)));
            Demand(days.size() == executed && executed <= periods, number + ": instalments that do not count");
            Demand((registration.Text(kTagStatus) == kStatusExpired) == (executed == periods),
                   number + " does not end with its last instalment");
            count += days.size();
            sys_days expected =
                std::max(DateOf(registration, kTagStartDate), DateOf(registration, kTagRegistrationDate));
            for (const sys_days day : days) {
                while (!IsOpen(expected))
                    expected += std::chrono::days(1);
                Demand(day == expected || m_paused.contains(number), number + ": a day without its instalment");
                expected = day + std::chrono::days(1);
            }
        }
        std::printf(
            "%zu registrations, of which %zu told, and %zu instalments, of which %zu looked at, until %s\n",
            m_byId.size(), m_told, count, m_seen, RecordDate(m_server.Today()).c_str());
    }

private:
    static sys_days DateOf(const Registration& registration, std::uint32_t tag) {
        return ParseRecordDate(registration.Text(tag)).value_or(std::chrono::year_month_day{});
    }
    bool IsOpen(sys_days day) const {
        return std::chrono::weekday(day).iso_encoding() < 6 && !m_closed.contains(day);
    }
    const Registration& Found(const std::string& number) const {
        const Registration* found = m_server.Find(number);
        Demand(found != nullptr, number + " is gone");
        return *found;
    }
    std::string Next(const std::string& number) const {
        return std::to_string(DateNumber(DateOf(Found(number), kTagNextExecution)));
    }
    // Of the exchange orders, by number, each once.
    const std::map<std::string, sys_days>& DaysOf(const std::string& number) {
        const auto [place, isNew] = m_orders.emplace(number, std::map<std::string, sys_days>{});
        if (!isNew) return place->second;
        const std::string bytes =
            Message({{kTagRequestName, "qry_eq_sip_orders"}, {kTagRegistrationNumber, number}});
        const qmx::MessageReader reader(bytes);
        Reply reply =
            m_server.Handle(reader.Handle(), {std::string(Found(number).Text(kTagUser)), "BROKER", ""});
        while (!reply.rows->isDone) {
            const std::string row = m_server.NextRow(*reply.rows);
            const qmx::MessageReader read(row);
            if (qmx::Has(read.Handle(), kTagErrorCode)) break;
            const std::string_view placed = qmx::Text(read.Handle(), kTagPlacedAt);
            const auto day = ParseRecordDate(placed.substr(0, placed.find(' ')));
            Demand(day && place->second.emplace(qmx::Text(read.Handle(), kTagOrderNumber), *day).second,
                   number + ": an order is there twice");
        }
        return place->second;
    }

    Server& m_server;
    std::set<sys_days> m_closed;
    std::map<std::string, std::string> m_byId;
    std::map<std::string, std::map<std::string, sys_days>> m_orders;
    std::set<std::string> m_asked, m_paused;
    std::size_t m_told = 0, m_seen = 0;
};

void Run(const std::string& self, const std::string& program, int kills, unsigned seed) {
    const auto folder = std::filesystem::temp_directory_path() / ("vesk-kill-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    // Years of days, every eleventh closed.
    ServerConfig config;
    std::string nonTrading = "date,occasion\n";
    const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    for (int i = 0; i < 400; ++i) {
        config.nonTrading.push_back(today + std::chrono::days(11 * i));
        std::string digits = std::to_string(DateNumber(config.nonTrading.back()));
        nonTrading += digits.insert(6, "-").insert(4, "-") + ",closed\n";
    }
    WriteFileText(folder / "nontrading.csv", nonTrading);
    WriteFileText(folder / "server.json", "{}");

    std::mt19937 random(seed);
    auto server = std::make_unique<ServerProcess>(program, folder.string(), std::uint16_t{0});
    const std::uint16_t port = server->Port();
    std::list<DealerProcess> dealers;
    std::array<DealerProcess*, 3> living{};
    const auto hire = [&](std::size_t place) {
        const std::string count = std::to_string(dealers.size() + 1);
        living[place] = &dealers.emplace_back(Words{self, "--dealer", std::to_string(port),
                                                    "USER" + std::to_string(place + 1), "d" + count + "-",
                                                    std::to_string(seed + dealers.size())},
                                              folder.string());
    };
    for (std::size_t place = 0; place < living.size(); ++place)
        hire(place);
    const auto pause = [&](unsigned leastMs, unsigned spanMs) {
        usleep(1000 * (leastMs + static_cast<unsigned>(random()) % spanMs));
    };
    int serverKills = 0;
    for (int i = 0; i < kills; ++i) {
        // Some right at the start, while the terminals come back; most in the middle of the work.
        pause(20, 500);
        if (random() % 2) {
            server.reset();
            ++serverKills;
            pause(0, 100);
            server = std::make_unique<ServerProcess>(program, folder.string(), port);
        } else {
            const std::size_t place = random() % living.size();
            living[place]->Kill();
            hire(place);
        }
    }
    for (DealerProcess* dealer : living)
        dealer->AskNoMore();
    const std::int64_t end = SteadyMs() + 60'000;
    while (SteadyMs() < end && !std::ranges::all_of(living, &DealerProcess::IsQuiet))
        usleep(1000);
    // What one of them did last, streamed to the others.
    usleep(500'000);
    for (DealerProcess* dealer : living)
        dealer->End();
    server.reset();

    JournalOpening opening = Journal::Open(folder / "journal");
    Demand(opening.journal != nullptr, opening.error);
    Server held(config, *opening.journal, opening.records, SystemClock());
    Demand(held.ReplayError().empty(), held.ReplayError());
    std::printf("%d kills of the server, %d of terminals: ", serverKills, kills - serverKills);
    Verdict verdict(held, config.nonTrading);
    for (const DealerProcess& dealer : dealers)
        verdict.Hear(dealer);
    verdict.JudgeAll();
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace vesk

int main(int count, char** words) {
    using namespace vesk;
    if (count == 6 && std::string_view(words[1]) == "--dealer")
        return RunDealer(static_cast<std::uint16_t>(std::stoul(words[2])), words[3], words[4],
                         static_cast<unsigned>(std::stoul(words[5])));
    std::map<std::string, std::string> options{{"--kills", "25"}, {"--seed", "1"}};
    for (int i = 2; i + 1 < count; i += 2)
        options[words[i]] = words[i + 1];
    if (count < 2) Die("which server?");
    Run("/proc/self/exe", words[1], std::stoi(options["--kills"]),
        static_cast<unsigned>(std::stoul(options["--seed"])));
}

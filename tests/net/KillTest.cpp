// kill_test SERVER [--kills N] [--seed N]
//
// Terminals place and change orders under load while the server's clock moves, and the server or a terminal is
// killed at random moments and started again. In the end every order and change that was acknowledged is there
// once, what a killed terminal had not been told of once or not at all, and the instalments of every plan are
// one a day, without a gap, and none on a closed day.

#include "host/server/schedule/Schedule.h"
#include "tests/net/KillVerdict.h"
#include "tests/net/NetFixture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <list>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace vesk {
namespace {

using Words = std::vector<std::string>;

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
            if (m_said == "q\n" || m_said.ends_with("\nq\n")) m_isQuiet = true;
        }
    }

    std::string m_said;
    std::atomic<bool> m_isQuiet = false;
    bool m_wasKilled = false;
    Child m_child;
    std::thread m_reader;
};

// Terminals at a server, all of them processes.
class Trial {
public:
    Trial(std::string program, unsigned seed)
        : m_program(std::move(program)), m_seed(seed), m_random(seed),
          m_folder(std::filesystem::temp_directory_path() / ("vesk-kill-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
        WriteFileText(m_folder / "nontrading.csv", CloseDays());
        WriteFileText(m_folder / "server.json", "{}");
        StartServer();
        for (std::size_t place = 0; place < m_living.size(); ++place)
            Hire(place);
    }

    void KillOne() {
        // Some right at the start, while the terminals come back; most in the middle of the work.
        Pause(20, 500);
        if (m_random() % 2) {
            m_server.reset();
            ++m_serverKills;
            Pause(0, 100);
            StartServer();
        } else {
            const std::size_t place = m_random() % m_living.size();
            m_living[place]->Kill();
            Hire(place);
        }
    }

    void Finish() {
        for (DealerProcess* dealer : m_living)
            dealer->AskNoMore();
        const std::int64_t end = SteadyMs() + 60'000;
        while (SteadyMs() < end && !std::ranges::all_of(m_living, &DealerProcess::IsQuiet))
            Pause(1, 1);
        // What one of them did last, streamed to the others.
        Pause(500, 1);
        for (DealerProcess* dealer : m_living)
            dealer->End();
        m_server.reset();
    }

    void Judge() {
        JournalOpening opening = Journal::Open(m_folder / "journal");
        Demand(opening.journal != nullptr, opening.error);
        Server held(m_config, *opening.journal, opening.records, SystemClock());
        Demand(held.ReplayError().empty(), held.ReplayError());
        Verdict verdict(held, m_config.nonTrading);
        for (const DealerProcess& dealer : m_dealers)
            verdict.Hear(dealer.Said(), dealer.WasKilled());
        std::printf("%zu kills of the server, %zu of terminals: %s\n", m_serverKills,
                    m_dealers.size() - m_living.size(), verdict.JudgeAll().c_str());
        std::filesystem::remove_all(m_folder);
    }

private:
    // Years of days, every eleventh closed. As the file has them.
    std::string CloseDays() {
        std::string file = "date,occasion\n";
        const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
        for (int i = 0; i < 400; ++i) {
            m_config.nonTrading.push_back(today + std::chrono::days(11 * i));
            std::string digits = std::to_string(DateNumber(m_config.nonTrading.back()));
            file += digits.insert(6, "-").insert(4, "-") + ",closed\n";
        }
        return file;
    }
    void StartServer() {
        m_server = std::make_unique<ServerProcess>(m_program, m_folder.string(), m_port);
        m_port = m_server->Port();
    }
    void Hire(std::size_t place) {
        const std::string count = std::to_string(m_dealers.size() + 1);
        m_living[place] = &m_dealers.emplace_back(Words{"/proc/self/exe", "--dealer", std::to_string(m_port),
                                                        "USER" + std::to_string(place + 1), "d" + count + "-",
                                                        std::to_string(m_seed + m_dealers.size())},
                                                  m_folder.string());
    }
    void Pause(unsigned leastMs, unsigned spanMs) {
        usleep(1000 * (leastMs + static_cast<unsigned>(m_random()) % spanMs));
    }

    const std::string m_program;
    const unsigned m_seed;
    std::mt19937 m_random;
    const std::filesystem::path m_folder;
    ServerConfig m_config;
    std::uint16_t m_port = 0; // the first server's, and of all after it
    std::unique_ptr<ServerProcess> m_server;
    std::list<DealerProcess> m_dealers; // the killed ones too
    std::array<DealerProcess*, 3> m_living{};
    std::size_t m_serverKills = 0;
};

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
    Demand(count > 1, "which server?");
    Trial trial(words[1], static_cast<unsigned>(std::stoul(options["--seed"])));
    for (int kills = std::stoi(options["--kills"]); kills > 0; --kills)
        trial.KillOne();
    trial.Finish();
    trial.Judge();
}

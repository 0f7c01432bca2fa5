// kill_test SERVER [--kills N] [--seed N]
//
// Terminals place and change orders under load while the server's clock moves; at random moments the server is
// killed and started again, or a terminal cut off and another put in its place. In the end every order and
// change that was acknowledged is there once, what a terminal had not been told of when it was cut off once or
// not at all, and the instalments of every plan are one a day, without a gap, and none on a closed day.

#include "host/server/schedule/Schedule.h"
#include "tests/net/KillDealer.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <list>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk {
namespace {

// The server, as a program of its own until it is killed.
class ServerProcess {
public:
    ServerProcess(const std::string& program, const std::string& folder, std::uint16_t port) {
        int in[2], out[2];
        Demand(pipe2(in, O_CLOEXEC) == 0 && pipe2(out, O_CLOEXEC) == 0, "no pipes");
        const std::string number = std::to_string(port), errors = folder + "/server.log";
        const int file = open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        m_id = fork();
        if (m_id == 0) {
            dup2(in[0], 0), dup2(out[1], 1), dup2(file, 2);
            execl(program.c_str(), program.c_str(), "--port", number.c_str(), "--data", folder.c_str(),
                  "--allow-commands", "--login", "USER1:BROKER", "--login", "USER2:BROKER", "--login",
                  "USER3:BROKER", nullptr);
            _exit(127);
        }
        close(in[0]), close(out[1]), close(file);
        m_input = in[1], m_output = out[0];
        std::string line;
        for (char byte = 0; byte != '\n' && read(m_output, &byte, 1) == 1;)
            line += byte;
        Demand(line.starts_with("listening on 127.0.0.1:"), "the server did not start");
        m_port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess() {
        int state = 0;
        kill(m_id, SIGKILL);
        waitpid(m_id, &state, 0);
        close(m_input), close(m_output);
        Demand(WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL, "the server ended before it was killed");
    }
    std::uint16_t Port() const { return m_port; }

private:
    pid_t m_id = 0;
    int m_input = -1, m_output = -1;
    std::uint16_t m_port = 0;
};

// Terminals at a server.
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
        Work(20, 500);
        if (m_random() % 2) {
            m_server.reset();
            ++m_serverKills;
            Work(0, 100);
            StartServer();
        } else {
            const std::size_t place = m_random() % m_living.size();
            m_living[place]->Cut();
            Hire(place);
        }
    }

    void Finish() {
        m_isOver = true;
        const std::int64_t end = SteadyMs() + 60'000;
        while (SteadyMs() < end && !std::ranges::all_of(m_living, &Dealer::IsQuiet))
            Work(1, 1);
        // What one of them did last, streamed to the others.
        Work(500, 1);
        m_server.reset();
    }

    void Judge() {
        JournalOpening opening = Journal::Open(m_folder / "journal");
        Demand(opening.journal != nullptr, opening.error);
        Server held(m_config, *opening.journal, opening.records, SystemClock());
        Demand(held.ReplayError().empty(), held.ReplayError());
        Verdict verdict(held, m_config.nonTrading);
        for (const Dealer& dealer : m_dealers)
            verdict.Hear(dealer.Told());
        std::printf("%zu kills of the server, %zu terminals cut off: %s\n", m_serverKills,
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
        m_living[place] =
            &m_dealers.emplace_back(ServerPlace{m_port, SecretsBeside((m_folder / "journal").string())},
                                    "USER" + std::to_string(place + 1), "d" + count + "-",
                                    m_seed + static_cast<unsigned>(m_dealers.size()));
    }
    void Work(unsigned leastMs, unsigned spanMs) {
        const std::int64_t end = SteadyMs() + leastMs + static_cast<unsigned>(m_random()) % spanMs;
        do {
            for (Dealer& dealer : m_dealers)
                dealer.Go(!m_isOver);
            usleep(200);
        } while (SteadyMs() < end);
    }

    const std::string m_program;
    const unsigned m_seed;
    std::mt19937 m_random;
    const std::filesystem::path m_folder;
    ServerConfig m_config;
    std::uint16_t m_port = 0; // the first server's, and of all after it
    std::unique_ptr<ServerProcess> m_server;
    std::list<Dealer> m_dealers; // those that were cut off too
    std::array<Dealer*, 3> m_living{};
    bool m_isOver = false;
    std::size_t m_serverKills = 0;
};

} // namespace
} // namespace vesk

int main(int count, char** words) {
    using namespace vesk;
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

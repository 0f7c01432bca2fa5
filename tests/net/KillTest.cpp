// kill_test SERVER [--kills N] [--seed N]
//
// Terminals place and change orders under load while the server's clock moves; at random moments the server is
// killed and started again, or a terminal cut off and another put in its place. In the end every order and
// change that was acknowledged is there once, what a terminal had not been told of when it was cut off once or
// not at all, and the instalments of every plan are one a day, without a gap, and none on a closed day.

#include "host/server/schedule/Schedule.h"
#include "tests/net/KillDealer.h"
#include "tests/net/ServerProcess.h"

#include <algorithm>
#include <array>
#include <list>
#include <random>
#include <unistd.h>

namespace vesk {
namespace {

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
        Demand(held.Journal().ReplayError().empty(), held.Journal().ReplayError());
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
        m_server = std::make_unique<ServerProcess>(m_program, m_folder.string(), m_port,
                                                   Texts{"--allow-commands", "--login", "USER1:BROKER",
                                                         "--login", "USER2:BROKER", "--login", "USER3:BROKER"});
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

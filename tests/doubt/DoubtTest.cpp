// doubt_test SERVER [--faults N] [--seed N] [--round N]
//
// Rounds of a dealer's terminal at a trading server, each a process, in which something goes wrong at some step
// of placing and changing orders. The dealer then does what the plug-in offers until nothing is left in doubt.
// In the end every order that he meant stands once in the server's book, and what he was told of each is true.

#include "tests/doubt/Round.h"
#include "tests/net/NetFixture.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace planfold::test {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kOperator = "OPERATOR";
constexpr unsigned kRoundsAtServer = 100; // one with too much in it would be slow to start

void Demand(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "doubt_test: %s\n", what.c_str());
    std::_Exit(2);
}

std::string ReadLine(int file) {
    std::string line;
    for (char byte = 0; read(file, &byte, 1) == 1 && byte != '\n';)
        line += byte;
    return line;
}

// The server as a program, told commands and killed.
class ServerProcess {
public:
    ServerProcess(std::string program, std::string secretsFile)
        : m_program(std::move(program)), m_place{0, std::move(secretsFile)} {
        Start();
    }
    ~ServerProcess() { Kill(); }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    const vesk::ServerPlace& Place() const { return m_place; }
    void Start() {
        if (m_id != 0) return;
        int ends[2];
        Demand(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "no sockets");
        const std::string port = std::to_string(m_place.port);
        m_id = fork();
        if (m_id == 0) {
            dup2(ends[0], 0), dup2(ends[0], 1);
            dup2(open("server.log", O_WRONLY | O_CREAT | O_APPEND, 0600), 2);
            execl(m_program.c_str(), m_program.c_str(), "--port", port.c_str(), "--journal", "journal",
                  "--allow-commands", nullptr);
            _exit(127);
        }
        close(ends[0]);
        m_socket = ends[1];
        const std::string line = ReadLine(m_socket);
        Demand(line.starts_with("listening"), "the server did not start");
        m_place.port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }
    void Kill() {
        if (m_id == 0) return;
        kill(m_id, SIGKILL);
        int state = 0;
        waitpid(std::exchange(m_id, 0), &state, 0);
        close(m_socket);
        Demand(WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL, "the server ended by itself");
    }
    // By a terminal of its own, which it answers at once.
    void Tell(const Words& commands) {
        vesk::Terminal terminal(m_place, kOperator);
        std::size_t told = 0;
        const std::int64_t end = vesk::SteadyMs() + 20'000;
        for (bool isAsked = false; told < commands.size(); usleep(100)) {
            Demand(vesk::SteadyMs() < end, "the server does not listen");
            terminal.Pump();
            if (isAsked || terminal.Client().State() != vesk::LinkState::connected) continue;
            isAsked = true;
            for (const std::string& command : commands)
                terminal.Client().Command(command, [&](const vesk::Told& outcome) {
                    Demand(outcome.isDone, outcome.text);
                    ++told;
                });
        }
    }

private:
    const std::string m_program;
    pid_t m_id = 0;
    int m_socket = -1;
    vesk::ServerPlace m_place; // the first one's port, and of all after it
};

// What the dealer is told, line by line, against the book.
class Judgement {
public:
    struct Row {
        std::string orderId, account, value, status;
    };
    std::map<std::string, Row> book; // by number
    std::size_t lost = 0, doubled = 0, wrong = 0;
    std::string texts;

    void Hear(const std::string& line) {
        std::istringstream words(line.substr(1));
        Words told;
        for (std::string word; words >> word;)
            told.push_back(word);
        if (line[0] == 'o') m_orders.push_back(told);
        if (line[0] == 'c') m_changes[told[1] + " " + told[2]] = told[0];
        if (line[0] == 't') m_twice.insert(told[0]);
        if (line[0] == 'w') Count(wrong, line.substr(2));
    }
    std::size_t CountTwice() const { return m_twice.size(); }
    void Judge(const Round& round, const Memory& memory) {
        JudgeOrders(round, memory);
        if (round.wish == Wish::changes) JudgeChanges(round);
    }

private:
    void Count(std::size_t& what, const std::string& text) {
        ++what;
        texts += "    " + text + "\n";
    }
    void JudgeOrders(const Round& round, const Memory& memory) {
        std::map<std::string, int> wanted, standing;
        std::set<std::string> identifiers, known = m_twice;
        for (int i = 0; i < round.count; ++i)
            ++wanted[round.Account(i)];
        for (const auto& [number, row] : book) {
            const bool isCancelledTwin = m_twice.contains(number) && row.status == vesk::kStatusCancelled;
            if (!isCancelledTwin) ++standing[row.account];
            identifiers.insert(row.orderId);
        }
        for (const Words& told : m_orders) {
            const auto row = book.find(told[2]);
            const bool isThere = row != book.end() && row->second.account == told[3]
                                 && (told[1] == "-" || row->second.orderId == told[1]);
            if (told[0] == "done") known.insert(told[2]);
            if (told[0] == "done" && !isThere) Count(wrong, told[3] + " shown as registered: " + told[2]);
            if ((told[0] == "refused" || told[0] == "notSent") && told[1] != "-"
                && identifiers.contains(told[1]))
                Count(wrong, told[3] + " shown as " + told[0] + ", and registered");
        }
        for (const auto& [account, count] : wanted) {
            for (int i = standing[account]; i < count; ++i)
                Count(lost, account + " is lost");
            for (int i = standing[account]; i > count; --i)
                Count(doubled, account + " is doubled");
        }
        // Who is not killed places what is absent under the identifier that it had.
        if (round.hasIdentifiers && !memory.hasDied)
            for (const std::string& number : m_twice)
                Count(doubled, number + " was placed under another identifier");
        if (round.agrees || round.overMidnight) return;
        for (const auto& [number, row] : book)
            if (!known.contains(number)) Count(wrong, row.account + " not shown: " + number);
    }
    void JudgeChanges(const Round& round) {
        constexpr const char* requests[] = {"modify_sip_order", "pause_sip_order", "cancel_sip_order"};
        for (const auto& [number, row] : book) {
            const int order = std::stoi(row.account.substr(1));
            const bool isDone = order % 3 == 0   ? row.value == std::to_string(100 * (9000 + order))
                                : order % 3 == 1 ? row.status == vesk::kStatusPaused
                                                 : row.status == vesk::kStatusCancelled;
            const std::string state = m_changes[number + " " + requests[order % 3]];
            if (!isDone) Count(lost, number + " is not changed, and shown so: " + state);
            // Of two the later one is refused.
            const bool isRepeated = round.fault->server == std::string_view("delay ") && state == "refused";
            if (isDone && state != "done" && !isRepeated && !round.agrees && !round.overMidnight)
                Count(wrong, number + " is changed, and shown so: " + state);
        }
    }

    std::vector<Words> m_orders;
    std::map<std::string, std::string> m_changes; // states
    std::set<std::string> m_twice;
};

class Rounds {
public:
    Rounds(std::string program, unsigned seed)
        : m_program(std::move(program)), m_seed(seed),
          m_memory(static_cast<Memory*>(
              mmap(nullptr, sizeof(Memory), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}

    void Play(unsigned number) {
        if (!m_server || ++m_atServer % kRoundsAtServer == 0) MakeServer(number);
        const Round round(m_seed, number);
        *m_memory = {};
        const std::string folder = "d" + std::to_string(number);
        std::filesystem::create_directory(folder);
        Judgement judgement;
        for (bool goesOn = true; goesOn;)
            goesOn = LiveOnce(round, folder, judgement);
        Heal(round);
        ReadBook(round, judgement);
        judgement.Judge(round, *m_memory);
        std::filesystem::remove_all(folder);
        Take(round, number, judgement);
    }
    bool Report() const {
        std::size_t all = 0;
        for (const Fault& fault : kFaults) {
            const auto played = m_played.find(fault.name);
            if (played == m_played.end()) continue;
            std::printf("%6zu %s\n", played->second, fault.name);
            all += played->second;
        }
        std::printf("%6zu dealer killed besides\n", m_deaths);
        std::printf("%zu faults, %zu orders, %zu told to be registered twice: lost %zu, doubled %zu, wrongly "
                    "shown %zu\n",
                    all + m_deaths, m_orders, m_twice, m_lost, m_doubled, m_wrong);
        return m_lost + m_doubled + m_wrong == 0;
    }

private:
    void MakeServer(unsigned number) {
        m_server.reset();
        for (const char* name : {"journal", "journal.head"})
            std::filesystem::remove(name);
        const std::string secretsFile = vesk::SecretsBeside(std::filesystem::absolute("journal").string());
        vesk::Logins logins;
        logins.Add({kOperator, "BROKER", ""});
        for (unsigned one = number; one < number + kRoundsAtServer; ++one)
            logins.Add({"U" + std::to_string(one), "U" + std::to_string(one), ""});
        Demand(logins.Write(secretsFile).empty(), "no secrets");
        m_server = std::make_unique<ServerProcess>(m_program, secretsFile);
    }
    // False once the dealer has come to his end.
    bool LiveOnce(const Round& round, const std::string& folder, Judgement& judgement) {
        constexpr int mostLives = 5;
        Demand(m_memory->lives < mostLives, "a dealer who does not stop dying");
        int ends[2];
        Demand(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "no sockets");
        const pid_t id = fork();
        if (id == 0) {
            close(ends[1]);
            if (chdir(folder.c_str()) != 0) _exit(3);
            LiveAsDealer(round, *m_memory, m_server->Place(), ends[0]);
        }
        close(ends[0]);
        std::string said;
        char part[4096];
        for (ssize_t got; (got = read(ends[1], part, sizeof part)) > 0;) {
            said.append(part, static_cast<std::size_t>(got));
            for (std::size_t end; (end = said.find('\n')) != said.npos; said.erase(0, end + 1)) {
                const std::string line = said.substr(0, end);
                if (line[0] != '!') {
                    judgement.Hear(line);
                    continue;
                }
                Do(round, line.substr(1));
                Demand(write(ends[1], "", 1) == 1, "a dealer does not listen");
            }
        }
        close(ends[1]);
        int state = 0;
        waitpid(id, &state, 0);
        const bool isKilled = WIFSIGNALED(state) && WTERMSIG(state) == SIGKILL;
        Demand(isKilled || (WIFEXITED(state) && WEXITSTATUS(state) == 0), "a dealer ended badly: " + folder);
        if (isKilled && round.fault->play != Play::down) Heal(round);
        return isKilled;
    }
    void Do(const Round& round, const std::string& what) {
        if (what == "heal") return Heal(round);
        if (what != "play") m_server->Kill();
        if (what == "restart") m_server->Start();
        if (what != "play") return;
        std::string play = round.fault->server;
        const bool isBook = play.starts_with("book ");
        if (isBook) play.erase(0, 5);
        if (play == "delay ") {
            play += std::to_string(round.lateMs);
            m_memory->lateUntilMs = vesk::SteadyMs() + 2 * round.lateMs;
        }
        Words commands;
        for (const char* request : kPlayedOn)
            if (isBook == (request == std::string_view("om_get_sip_orders")))
                commands.push_back(std::string("fault ") + request + " " + play);
        m_server->Tell(commands);
        m_isSick = true;
    }
    void Heal(const Round& round) {
        m_server->Start();
        if (!std::exchange(m_isSick, false) || round.fault->play != Play::server) return;
        Words commands;
        for (const char* request : kPlayedOn)
            commands.push_back(std::string("fault ") + request + " none");
        m_server->Tell(commands);
    }
    void ReadBook(const Round& round, Judgement& judgement) {
        vesk::Terminal terminal(m_server->Place(), round.login, round.login);
        bool isOver = false;
        terminal.onAnswer = [&](void* message) {
            isOver = !qmx::Has(message, tag::queriedRow);
            const auto text = [&](std::uint32_t tag) { return std::string(qmx::Text(message, tag)); };
            if (!isOver)
                judgement.book[text(tag::registrationNumber)] = {
                    text(tag::orderId), text(tag::account), text(tag::amountOrQuantity), text(tag::sipStatus)};
        };
        terminal.Send({{tag::requestName, "om_get_sip_orders"}, {tag::loginId, round.login}});
        const std::int64_t end = vesk::SteadyMs() + 20'000;
        for (; !isOver && vesk::SteadyMs() < end; usleep(100))
            terminal.Pump();
        Demand(isOver, "the book cannot be read");
    }
    void Take(const Round& round, unsigned number, const Judgement& judgement) {
        m_played[round.fault->name] += m_memory->isPlayed;
        m_deaths += m_memory->hasDied;
        m_orders += static_cast<std::size_t>(round.count);
        m_lost += judgement.lost;
        m_doubled += judgement.doubled;
        m_wrong += judgement.wrong;
        m_twice += judgement.CountTwice();
        if (judgement.texts.empty()) return;
        constexpr const char* wishes[] = {"basket", "form", "changes"};
        std::printf("--seed %u --round %u: %s of %d, %s%s%s%s%s%s\n%s", m_seed, number,
                    wishes[static_cast<std::size_t>(round.wish)], round.count, round.fault->name,
                    m_memory->hasDied ? ", killed besides" : "", round.hasIdentifiers ? "" : ", no identifiers",
                    round.overMidnight ? ", over midnight" : "", round.isTwin ? ", twins" : "",
                    round.agrees ? ", sends without a record" : "", judgement.texts.c_str());
        std::fflush(stdout);
    }

    static constexpr const char* kPlayedOn[] = {"add_sip_orders",   "modify_sip_order", "pause_sip_order",
                                                "cancel_sip_order", "resume_sip_order", "om_get_sip_orders"};
    const std::string m_program;
    const unsigned m_seed;
    Memory* const m_memory;
    std::unique_ptr<ServerProcess> m_server;
    std::size_t m_atServer = 0;
    bool m_isSick = false;
    std::map<std::string, std::size_t> m_played;
    std::size_t m_deaths = 0, m_orders = 0, m_twice = 0, m_lost = 0, m_doubled = 0, m_wrong = 0;
};

} // namespace
} // namespace planfold::test

int main(int count, char** words) {
    using namespace planfold::test;
    std::map<std::string, unsigned> options{{"--faults", 150}, {"--seed", 1}, {"--round", 0}};
    for (int i = 2; i + 1 < count; i += 2)
        options[words[i]] = static_cast<unsigned>(std::stoul(words[i + 1]));
    Demand(count > 1, "which server?");
    const std::string program = std::filesystem::absolute(words[1]).string();
    const auto folder = std::filesystem::temp_directory_path() / ("vesk-doubt-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    setenv("TZ", "UTC", 1);
    signal(SIGPIPE, SIG_IGN);
    bool isGood = false;
    {
        Rounds rounds(program, options["--seed"]);
        const unsigned one = options["--round"];
        for (unsigned number = one ? one : 1; number <= (one ? one : options["--faults"]); ++number)
            rounds.Play(number);
        isGood = rounds.Report();
    }
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
    return isGood ? 0 : 1;
}

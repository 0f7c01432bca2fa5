// kill_test SERVER [--kills N] [--seed N]
//
// Terminals place, modify, pause, resume and cancel under load while the server is killed at random moments and
// started again on the same journal. In the end every change that was asked for has been answered once, and the
// server holds what the last answer of each registration said.

#include "tests/net/NetFixture.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk {
namespace {

[[noreturn]] void Die(const std::string& what) {
    std::fprintf(stderr, "kill_test: %s\n", what.c_str());
    std::exit(1);
}
void Demand(bool holds, const std::string& what) {
    if (!holds) Die(what);
}

// The server as a process; ended by force.
class Process {
public:
    Process(const std::string& program, const std::string& journal, std::uint16_t port) {
        int in[2], out[2];
        Demand(pipe(in) == 0 && pipe(out) == 0, "no pipes");
        m_id = fork();
        if (m_id == 0) {
            dup2(in[0], 0), dup2(out[1], 1);
            for (const int end : {in[0], in[1], out[0], out[1]})
                close(end);
            execl(program.c_str(), program.c_str(), "--port", std::to_string(port).c_str(), "--journal",
                  journal.c_str(), nullptr);
            _exit(127);
        }
        close(in[0]), close(out[1]);
        m_input = in[1];
        ReadPort(out[0]);
        close(out[0]);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
        close(m_input);
    }
    std::uint16_t Port() const { return m_port; }

private:
    void ReadPort(int output) {
        std::string line;
        for (char byte = 0; byte != '\n' && read(output, &byte, 1) == 1;)
            line += byte;
        Demand(line.starts_with("listening on 127.0.0.1:"), "the server did not start");
        m_port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    }

    pid_t m_id = 0;
    int m_input = -1;
    std::uint16_t m_port = 0;
};

// What a user has been told of a registration, and asks for next.
struct Held {
    std::string status = "active";
    std::string amount = "123450";
};

// A dealer who goes on as fast as the answers come, several things at a time, one at a time for a registration.
class Dealer {
public:
    Dealer(std::uint16_t port, std::string login, unsigned seed)
        : m_login(std::move(login)), m_terminal(port, m_login), m_random(seed) {
        m_terminal.onAnswer = [this](void* message) { OnAnswer(message); };
        Demand(m_terminal.Subscribe(kTagUser, ""), "no subscription");
    }

    void Go(bool goesOn) {
        while (goesOn && m_asked < m_answered + 8)
            Ask();
        m_terminal.Pump();
    }
    bool IsQuiet() { return m_terminal.Hub().Waiting() == 0; }
    void Judge(const Server& server, std::size_t& registrations) const {
        Demand(m_asked == m_answered, "not every request was answered once");
        registrations += m_held.size();
        for (const auto& [number, held] : m_held) {
            const Registration* found = server.Find(number);
            Demand(found && found->Text(kTagUser) == m_login, number + " is gone");
            Demand(found->Text(kTagStatus) == held.status && found->Text(kTagAmountOrQuantity) == held.amount,
                   number + " is not what was answered");
            Demand(std::ranges::count(m_terminal.streamed, number + " " + held.status) > 0,
                   number + " was not told by the stream as it is");
        }
    }
    std::size_t Asked() const { return m_asked; }

private:
    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }

    void Ask() {
        ++m_asked;
        const std::string unique = m_login + "-" + std::to_string(m_asked);
        if (m_free.empty() || Below(3) == 0) {
            Demand(m_terminal.Place(unique), "an order was not taken");
            return;
        }
        std::swap(m_free[Below(m_free.size())], m_free.back());
        const std::string number = m_free.back();
        m_free.pop_back();
        Fields request{{kTagRegistrationNumber, number}};
        Change(request, m_held[number], unique);
        Demand(m_terminal.Send(request), "a change was not taken");
    }

    // Always one that changes something, so that the journal must have a record of it.
    void Change(Fields& request, Held& held, const std::string& unique) {
        const std::size_t kind = Below(5);
        if (kind == 0) {
            held.status = "cancelled";
            request[kTagRequestName] = "cancel_sip_order";
            request[kTagRequestIdentifier] = unique;
        } else if (kind < 3) {
            const bool pauses = held.status == "active";
            held.status = pauses ? "Paused" : "active";
            request[kTagRequestName] = pauses ? "pause_sip_order" : "resume_sip_order";
        } else {
            held.amount = std::to_string(200'000 + m_asked);
            request[kTagRequestName] = "modify_sip_order";
            request[kTagAmountOrQuantity] = held.amount;
            request[kTagPeriods] = "12";
        }
    }

    void OnAnswer(void* message) {
        ++m_answered;
        const std::string text(qmx::Text(message, kTagUserText));
        Demand(!qmx::Has(message, kTagErrorCode), text);
        const std::string number = text.substr(text.find(": ") + 2);
        const bool isNew = text.starts_with("SIP registered");
        Demand(!isNew || !m_held.contains(number), number + " was answered for two orders");
        if (m_held[number].status != "cancelled") m_free.push_back(number);
    }

    std::string m_login;
    Terminal m_terminal;
    std::mt19937 m_random;
    std::size_t m_asked = 0, m_answered = 0;
    std::map<std::string, Held> m_held;
    std::vector<std::string> m_free; // that no change of is under way
};

void Run(const std::string& program, int kills, unsigned seed) {
    const auto folder = std::filesystem::temp_directory_path() / ("vesk-kill-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string journal = (folder / "journal").string();
    std::mt19937 random(seed);
    auto process = std::make_unique<Process>(program, journal, std::uint16_t{0});
    const std::uint16_t port = process->Port();
    std::array<Dealer, 3> dealers{Dealer{port, "USER1", seed}, Dealer{port, "USER2", seed + 1},
                                  Dealer{port, "USER3", seed + 2}};
    const auto goUntil = [&](bool goesOn, std::int64_t end, auto isEnough) {
        while (SteadyMs() < end && !isEnough()) {
            for (Dealer& dealer : dealers)
                dealer.Go(goesOn);
            usleep(200);
        }
    };
    for (int i = 0; i < kills; ++i) {
        // Some right at the start, while the terminals come back; most in the middle of the work.
        goUntil(true, SteadyMs() + 20 + random() % 500, [] { return false; });
        process.reset();
        goUntil(true, SteadyMs() + random() % 100, [] { return false; });
        process = std::make_unique<Process>(program, journal, port);
    }
    goUntil(false, SteadyMs() + 60'000, [&] { return std::ranges::all_of(dealers, &Dealer::IsQuiet); });
    // The streams of the last answers.
    goUntil(false, SteadyMs() + 500, [] { return false; });
    process.reset();

    JournalOpening opening = Journal::Open(journal);
    Demand(opening.journal != nullptr, opening.error);
    const Server server({}, *opening.journal, opening.records, SystemClock());
    std::size_t asked = 0, registrations = 0;
    for (const Dealer& dealer : dealers) {
        dealer.Judge(server, registrations);
        asked += dealer.Asked();
    }
    Demand(server.Registrations().size() == registrations, "the server holds others than were answered");
    std::printf("%d kills: %zu changes of %zu registrations, each there once\n", kills, asked, registrations);
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace vesk

int main(int count, char** words) {
    std::map<std::string, std::string> options{{"--kills", "25"}, {"--seed", "1"}};
    for (int i = 2; i + 1 < count; i += 2)
        options[words[i]] = words[i + 1];
    if (count < 2) vesk::Die("which server?");
    vesk::Run(words[1], std::stoi(options["--kills"]), static_cast<unsigned>(std::stoul(options["--seed"])));
}

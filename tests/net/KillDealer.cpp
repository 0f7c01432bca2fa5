#include "tests/net/KillVerdict.h"

#include "host/server/schedule/Schedule.h"
#include "tests/net/NetFixture.h"

#include <fcntl.h>
#include <iterator>
#include <random>
#include <unistd.h>

namespace vesk {
namespace {

constexpr std::size_t kOrdersAtATime = 6;
constexpr std::size_t kMostAlive = 120;
constexpr std::int64_t kDaySeconds = 86'400;

void SayLine(std::initializer_list<std::string_view> words) {
    std::string line;
    for (const std::string_view word : words)
        line.append(line.empty() ? "" : " ").append(word);
    line += '\n';
    // At once and as a whole: what was said is said, whatever comes.
    if (::write(1, line.data(), line.size()) < 0) _exit(1);
}

class Dealer {
public:
    Dealer(std::uint16_t port, const std::string& login, std::string name, unsigned seed)
        : m_login(login), m_name(std::move(name)), m_terminal(port, login), m_random(seed) {
        m_terminal.onAnswer = [this](void* message) { OnAnswer(message); };
        m_terminal.onUpdate = [this](void* message) { OnUpdate(message); };
        if (!m_terminal.Subscribe(tag::loginId, "")) _exit(1);
    }

    void Go(bool goesOn) {
        const std::uint32_t date = m_terminal.Client().Server().date;
        if (date < m_date) _exit(2); // the server's clock went back
        m_date = date;
        if (goesOn && m_date != 0) Ask();
        m_terminal.Pump();
    }
    bool IsQuiet() {
        return m_terminal.Client().Waiting() == 0 && m_terminal.Client().State() == LinkState::connected
               && !m_terminal.Client().Server().hasDue;
    }

private:
    // What it holds of a plan that goes on.
    struct Held {
        std::string id, periods;
        std::string status = "active";
        std::string amount = "123450";
    };

    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }
    const std::string& AnyHeld() {
        return std::next(m_held.begin(), static_cast<std::ptrdiff_t>(Below(m_held.size())))->first;
    }

    void Ask() {
        if (m_placing.size() < kOrdersAtATime && m_held.size() < kMostAlive) Place();
        if (m_changing.empty() && !m_held.empty()) Change(AnyHeld());
        if (m_looking.empty() && !m_held.empty()) Look(AnyHeld());
        if (SteadyMs() < m_clockAtMs) return;
        m_clockAtMs = SteadyMs() + 100 + static_cast<std::int64_t>(Below(400));
        m_terminal.Client().Command(Below(2) ? "clock next" : "clock " + std::to_string(Below(4)), {});
    }

    void Place() {
        Held held{m_name + std::to_string(++m_placed), std::to_string(1 + Below(9))};
        SayLine({"p", held.id});
        const std::chrono::sys_days today = DateOf(m_date);
        const std::int64_t start = today.time_since_epoch().count() + static_cast<std::int64_t>(Below(4));
        m_terminal.Send(Order("loginId=" + m_login + " orderId=" + held.id + " echoedNumber=" + held.id
                              + " frequency=daily totalPeriod=" + held.periods
                              + " startDate=" + std::to_string(start * kDaySeconds + kDaySeconds / 2)));
        m_placing.emplace(held.id, std::move(held));
    }

    void Change(const std::string& number) {
        m_changing = number;
        m_changed = m_held[number];
        Fields request = "registrationNumber=" + number;
        const std::size_t kind = Below(10);
        if (kind == 0) {
            m_changed.status = "cancelled";
            request[tag::requestName] = "cancel_sip_order";
            request[tag::orderId] = m_changed.id + "x";
        } else if (kind < 4) {
            const bool pauses = m_changed.status == "active";
            m_changed.status = pauses ? "Paused" : "active";
            request[tag::requestName] = pauses ? "pause_sip_order" : "resume_sip_order";
        } else {
            m_changed.amount = std::to_string(200'000 + ++m_changes);
            request[tag::requestName] = "modify_sip_order";
            request[tag::amountOrQuantity] = m_changed.amount;
            request[tag::totalPeriod] = m_changed.periods;
        }
        SayLine({"c", number, m_changed.status, m_changed.amount});
        m_terminal.Send(request);
    }

    void Look(const std::string& number) {
        m_looking = number;
        m_terminal.Send("qry_eq_sip_orders registrationNumber=" + number);
    }

    void OnAnswer(void* message) {
        const std::string_view name = qmx::Text(message, tag::echoedRequest);
        const bool isEnd = qmx::Has(message, tag::errorCode);
        if (name == "qry_eq_sip_orders") {
            if (isEnd)
                m_looking.clear();
            else
                SayLine({"o", m_looking, qmx::Text(message, tag::orderNumber)});
        } else if (name == "add_sip_orders") {
            const std::string text(qmx::Text(message, tag::userText));
            auto placed = m_placing.extract(std::string(qmx::Text(message, tag::echoedNumber)));
            if (isEnd || placed.empty()) _exit(3); // nothing is wrong with any order, and each is answered once
            const std::string number = text.substr(text.find(": ") + 2);
            SayLine({"P", placed.key(), number});
            m_held.emplace(number, std::move(placed.mapped()));
        } else {
            // Refused when the plan has ended meanwhile.
            SayLine({"C", m_changing, isEnd ? "refused" : "done"});
            if (isEnd || m_changed.status == "cancelled")
                m_held.erase(m_changing);
            else
                m_held[m_changing] = m_changed;
            m_changing.clear();
        }
    }

    void OnUpdate(void* message) {
        const auto day = ParseRecordDate(qmx::Text(message, tag::nextExecutionDate));
        const std::string_view number = qmx::Text(message, tag::registrationNumber);
        const std::string_view status = qmx::Text(message, tag::sipStatus);
        SayLine({"s", number, status, std::to_string(day ? DateNumber(*day) : 0)});
        if (status == "expired" && number != m_changing) m_held.erase(std::string(number));
    }

    std::string m_login, m_name;
    Terminal m_terminal;
    std::mt19937 m_random;
    std::map<std::string, Held> m_placing, m_held; // by identifier, by number
    std::string m_changing, m_looking;             // the numbers
    Held m_changed;
    std::size_t m_placed = 0, m_changes = 0;
    std::uint32_t m_date = 0;
    std::int64_t m_clockAtMs = 0;
};

} // namespace

int RunDealer(std::uint16_t port, const std::string& login, const std::string& name, unsigned seed) {
    ::fcntl(0, F_SETFL, O_NONBLOCK);
    Dealer dealer(port, login, name, seed);
    bool goesOn = true, isQuiet = false;
    while (true) {
        char told = 0;
        const auto got = ::read(0, &told, 1);
        if (got == 0) return 0;
        if (got > 0) goesOn = false;
        dealer.Go(goesOn);
        if (!goesOn && !isQuiet && dealer.IsQuiet()) SayLine({"q"}), isQuiet = true;
        usleep(200);
    }
}

} // namespace vesk

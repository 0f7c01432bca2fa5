// A dealer's terminal to be cut off in the middle of its work, which goes as fast as the answers come.
#pragma once

#include "tests/net/KillVerdict.h"
#include "tests/net/NetFixture.h"

#include <iterator>
#include <random>

namespace vesk {

class Dealer {
public:
    Dealer(const ServerPlace& place, const std::string& login, std::string name, unsigned seed)
        : m_login(login), m_name(std::move(name)), m_terminal(std::in_place, place, login), m_random(seed) {
        m_terminal->onAnswer = [this](void* message) { OnAnswer(message); };
        m_terminal->onUpdate = [this](void* message) { OnUpdate(message); };
        Demand(m_terminal->Subscribe(tag::loginId, ""), "no stream");
    }

    void Go(bool asks) {
        if (!m_terminal) return;
        const std::uint32_t date = m_terminal->Client().Server().date;
        Demand(date >= m_date, "the server's clock went back");
        m_date = date;
        if (asks && m_date != 0) Ask();
        m_terminal->Pump();
    }
    // Was told everything, and no instalment is due.
    bool IsQuiet() {
        return !m_terminal
               || (m_terminal->Client().Waiting() == 0 && m_terminal->Client().State() == LinkState::connected
                   && !m_terminal->Client().Server().hasDue);
    }
    void Cut() {
        m_terminal.reset();
        m_story.isCut = true;
    }
    const Story& Told() const { return m_story; }

private:
    static constexpr std::size_t kOrdersAtATime = 6, kMostAlive = 120;

    // What it holds of a plan that goes on.
    struct Held {
        std::string id, periods;
        PlanState state;
    };

    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }
    const std::string& AnyHeld() {
        return std::next(m_held.begin(), static_cast<std::ptrdiff_t>(Below(m_held.size())))->first;
    }

    void Ask() {
        if (m_placing.size() < kOrdersAtATime && m_held.size() < kMostAlive) Place();
        if (m_changing.empty() && !m_held.empty()) Change(AnyHeld());
        if (m_looking.empty() && !m_held.empty()) {
            m_looking = AnyHeld();
            m_terminal->Send("qry_eq_sip_orders registrationNumber=" + m_looking);
        }
        if (SteadyMs() < m_clockAtMs) return;
        m_clockAtMs = SteadyMs() + 100 + static_cast<std::int64_t>(Below(400));
        m_terminal->Client().Command(Below(2) ? "clock next" : "clock " + std::to_string(Below(4)), {});
    }

    void Place() {
        constexpr std::int64_t daySeconds = 86'400;
        Held held{m_name + std::to_string(++m_placed), std::to_string(1 + Below(9)), {}};
        const std::chrono::sys_days today = DateOf(m_date);
        const std::int64_t start = today.time_since_epoch().count() + static_cast<std::int64_t>(Below(4));
        m_story.asked.insert(held.id);
        m_terminal->Send(Order("loginId=" + m_login + " orderId=" + held.id + " echoedNumber=" + held.id
                               + " frequency=daily totalPeriod=" + held.periods
                               + " startDate=" + std::to_string(start * daySeconds + daySeconds / 2)));
        m_placing.emplace(held.id, std::move(held));
    }

    void Change(const std::string& number) {
        const Held& held = m_held[number];
        PlanState& asked = m_story.pending[number] = held.state;
        m_changing = number;
        std::string request;
        const std::size_t kind = Below(10);
        if (kind == 0) {
            asked.status = "cancelled";
            request = "cancel_sip_order orderId=" + held.id + "x";
        } else if (kind < 4) {
            const bool pauses = asked.status == "active";
            asked.status = pauses ? "Paused" : "active";
            request = pauses ? "pause_sip_order" : "resume_sip_order";
            if (pauses) m_story.paused.insert(number);
        } else {
            asked.amount = std::to_string(200'000 + ++m_changes);
            request = "modify_sip_order amountOrQuantity=" + asked.amount + " totalPeriod=" + held.periods;
        }
        m_terminal->Send(request + " registrationNumber=" + number);
    }

    void OnAnswer(void* message) {
        const std::string_view name = qmx::Text(message, tag::echoedRequest);
        const bool isEnd = qmx::Has(message, tag::errorCode);
        if (name == "qry_eq_sip_orders") {
            if (isEnd)
                m_looking.clear();
            else
                m_story.seen.emplace(m_looking, qmx::Text(message, tag::orderNumber));
        } else if (name == "add_sip_orders") {
            auto placed = m_placing.extract(std::string(qmx::Text(message, tag::echoedNumber)));
            Demand(!isEnd && !placed.empty(), "an order was refused, or answered twice");
            const std::string number(qmx::Text(message, tag::registrationNumber));
            m_story.registered[placed.key()] = number;
            m_story.held[number];
            m_held.emplace(number, std::move(placed.mapped()));
        } else {
            // Refused when the plan has ended meanwhile.
            const auto change = m_story.pending.extract(std::exchange(m_changing, ""));
            Demand(!change.empty(), "a change was answered twice");
            if (!isEnd) m_story.held[change.key()] = m_held[change.key()].state = change.mapped();
            if (isEnd || change.mapped().status == "cancelled") m_held.erase(change.key());
        }
    }

    void OnUpdate(void* message) {
        const auto day = ParseRecordDate(qmx::Text(message, tag::nextExecutionDate));
        const std::string number(qmx::Text(message, tag::registrationNumber));
        StreamState& told = m_story.streamed[number];
        told.status = qmx::Text(message, tag::sipStatus);
        told.next = day ? DateNumber(*day) : 0;
        told.furthest = std::max(told.furthest, told.next);
        if (told.status == "expired" && number != m_changing) m_held.erase(number);
    }

    std::string m_login, m_name;
    std::optional<Terminal> m_terminal; // none: it was cut off
    std::mt19937 m_random;
    Story m_story;
    std::map<std::string, Held> m_placing, m_held; // by identifier, by number
    std::string m_changing, m_looking;             // the numbers
    std::size_t m_placed = 0, m_changes = 0;
    std::uint32_t m_date = 0;
    std::int64_t m_clockAtMs = 0;
};

} // namespace vesk

// What a server holds in the end against what its dealers were told.
#pragma once

#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace vesk {

// Ends the program with the text unless it holds.
inline void Demand(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what.c_str());
    std::_Exit(1);
}

struct PlanState {
    bool Is(const Registration& registration) const {
        const std::string_view now = registration.Text(tag::sipStatus);
        return registration.Text(tag::amountOrQuantity) == amount
               && (now == status || (now == kStatusExpired && status == kStatusActive));
    }
    std::string status = "active", amount = "123450";
};
struct StreamState {
    std::string status;
    std::uint32_t next = 0, furthest = 0; // of the days of the next execution, as yyyymmdd
};

// What one dealer asked for and was told.
struct Story {
    std::set<std::string> asked;                        // identifiers of orders
    std::map<std::string, std::string> registered;      // numbers by identifier
    std::map<std::string, PlanState> held, pending;     // by number: as answered last, and as asked for since
    std::map<std::string, StreamState> streamed;        // by number
    std::set<std::pair<std::string, std::string>> seen; // numbers, and of their exchange orders
    std::set<std::string> paused;
    bool isCut = false; // what it asked for last may be unanswered
};

class Verdict {
public:
    Verdict(Server& server, const std::vector<std::chrono::year_month_day>& closed)
        : m_server(server), m_closed(closed.begin(), closed.end()) {
        for (const Registration& registration : server.Held().All()) {
            std::string id(registration.Text(tag::orderId));
            // A cancellation has put its own there.
            if (id.ends_with('x')) id.pop_back();
            Demand(m_byId.emplace(id, registration.Number()).second, id + " is there twice");
        }
    }

    void Hear(const Story& story) {
        m_asked.insert(story.asked.begin(), story.asked.end());
        m_paused.insert(story.paused.begin(), story.paused.end());
        m_told += story.held.size();
        m_seen += story.seen.size();
        Demand(story.isCut || (story.registered.size() == story.asked.size() && story.pending.empty()),
               "something was not answered");
        for (const auto& [id, number] : story.registered)
            Demand(m_byId[id] == number, number + " is gone");
        for (const auto& [number, state] : story.held) {
            const auto pending = story.pending.find(number);
            Demand(state.Is(Found(number))
                       || (pending != story.pending.end() && pending->second.Is(Found(number))),
                   number + " is not what was answered");
        }
        for (const auto& [number, told] : story.streamed) {
            const Registration& registration = Found(number);
            const std::uint32_t next = DateNumber(DateOf(registration, tag::nextExecutionDate));
            Demand(told.furthest <= next, number + ": an instalment that was told is gone");
            Demand(story.isCut || (told.status == registration.Text(tag::sipStatus) && told.next == next),
                   number + " was not told by the stream as it is");
        }
        for (const auto& [number, order] : story.seen)
            Demand(DaysOf(number).contains(order), order + " is gone");
    }
    // Every registration, once all dealers are heard. What they come to.
    std::string JudgeAll() {
        for (const auto& [id, number] : m_byId) {
            Demand(m_asked.contains(id), number + " is no dealer's");
            JudgeInstalments(Found(number));
        }
        return std::to_string(m_byId.size()) + " registrations, of which " + std::to_string(m_told)
               + " told, and " + std::to_string(m_orders.size()) + " instalments, looked at "
               + std::to_string(m_seen) + " times, until " + RecordDate(m_server.Clock().Today());
    }

private:
    using sys_days = std::chrono::sys_days;

    static sys_days DateOf(const Registration& registration, std::uint32_t tag) {
        return ParseRecordDate(registration.Text(tag)).value_or(std::chrono::year_month_day{});
    }
    // One a day from the first on; a pause leaves days out.
    void JudgeInstalments(const Registration& registration) {
        const std::string number(registration.Number());
        std::set<sys_days> days;
        for (const auto& [order, day] : DaysOf(number)) {
            Demand(m_orders.insert(order).second, order + " is there twice");
            Demand(days.insert(day).second, number + ": two instalments on a day");
            Demand(IsOpen(day), number + ": an instalment on a closed day");
        }
        const auto executed = static_cast<std::size_t>(registration.progress.executed);
        const auto periods = std::stoul(std::string(registration.Text(tag::totalPeriod)));
        Demand(days.size() == executed && executed <= periods, number + ": instalments that do not count");
        Demand((registration.Text(tag::sipStatus) == kStatusExpired) == (executed == periods),
               number + " does not end with its last instalment");
        if (m_paused.contains(number)) return;
        sys_days expected =
            std::max(DateOf(registration, tag::startDate), DateOf(registration, tag::registrationDate));
        for (const sys_days day : days) {
            while (!IsOpen(expected))
                expected += std::chrono::days(1);
            Demand(day == expected, number + ": a day without its instalment");
            expected += std::chrono::days(1);
        }
    }
    bool IsOpen(sys_days day) const {
        return std::chrono::weekday(day).iso_encoding() < 6 && !m_closed.contains(day);
    }
    const Registration& Found(const std::string& number) const {
        const Registration* found = m_server.Held().Find(number);
        Demand(found != nullptr, number + " is gone");
        return *found;
    }
    // Of its exchange orders, by number.
    const std::map<std::string, sys_days>& DaysOf(const std::string& number) {
        const auto [place, isNew] = m_days.emplace(number, std::map<std::string, sys_days>{});
        if (!isNew) return place->second;
        const std::string request = Message("qry_eq_sip_orders registrationNumber=" + number);
        const qmx::MessageReader reader(request);
        const std::string user(Found(number).Text(tag::loginId));
        Reply reply = m_server.Handle(reader.Handle(), {user, "BROKER", ""});
        while (true) {
            const std::string bytes = m_server.NextRow(*reply.rows);
            const qmx::MessageReader row(bytes);
            if (qmx::Has(row.Handle(), tag::errorCode)) return place->second;
            const std::string_view placed = qmx::Text(row.Handle(), tag::placementTime);
            const auto day = ParseRecordDate(placed.substr(0, placed.find(' ')));
            Demand(day && place->second.emplace(qmx::Text(row.Handle(), tag::orderNumber), *day).second,
                   number + ": an order is there twice");
        }
    }

    Server& m_server;
    std::set<std::chrono::sys_days> m_closed;
    std::map<std::string, std::string> m_byId; // numbers by identifier of the order
    std::map<std::string, std::map<std::string, std::chrono::sys_days>> m_days;
    std::set<std::string> m_asked, m_paused, m_orders;
    std::size_t m_told = 0, m_seen = 0;
};

} // namespace vesk

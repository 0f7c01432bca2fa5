#include "tests/net/KillVerdict.h"

#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace vesk {
namespace {

using std::chrono::sys_days;

sys_days DateOf(const Registration& registration, std::uint32_t tag) {
    return ParseRecordDate(registration.Text(tag)).value_or(std::chrono::year_month_day{});
}

} // namespace

void Demand(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "kill_test: %s\n", what.c_str());
    std::_Exit(1);
}

bool Verdict::State::Is(const Registration& registration) const {
    const std::string_view now = registration.Text(tag::sipStatus);
    return registration.Text(tag::amountOrQuantity) == amount
           && (now == status || (now == kStatusExpired && status == kStatusActive));
}

struct Verdict::Line {
    std::string_view kind;
    std::size_t words;
    void (Verdict::*take)(Story& story, const Words& words);
};
const Verdict::Line Verdict::kLines[] = {
    {"p", 2, &Verdict::OnOrder},   {"P", 3, &Verdict::OnRegistered}, {"c", 4, &Verdict::OnChange},
    {"C", 3, &Verdict::OnChanged}, {"s", 4, &Verdict::OnStream},     {"o", 3, &Verdict::OnExchangeOrder},
};

Verdict::Verdict(Server& server, const std::vector<std::chrono::year_month_day>& closed)
    : m_server(server), m_closed(closed.begin(), closed.end()) {
    for (const Registration& registration : server.Registrations()) {
        std::string id(registration.Text(tag::orderId));
        // A cancellation has put its own there.
        if (id.ends_with('x')) id.pop_back();
        Demand(m_byId.emplace(id, registration.Number()).second, id + " is there twice");
    }
}

void Verdict::Hear(const std::string& said, bool wasKilled) {
    Story story;
    std::istringstream lines(said);
    for (std::string text; std::getline(lines, text);) {
        Words words;
        std::istringstream line(text);
        for (std::string word; line >> word;)
            words.push_back(word);
        const auto* kind = std::ranges::find(kLines, words.at(0), &Line::kind);
        if (kind != std::end(kLines) && kind->words == words.size()) (this->*kind->take)(story, words);
    }
    m_told += story.held.size();
    Demand(wasKilled || (story.orders.empty() && story.pending.empty()), "something was not answered");
    for (const auto& [number, state] : story.held)
        Demand(state.Is(Found(number))
                   || (story.pending.contains(number) && story.pending[number].Is(Found(number))),
               number + " is not what was answered");
    for (const auto& [number, last] : story.stream)
        Demand(wasKilled || last == std::string(Found(number).Text(tag::sipStatus)) + Next(number),
               number + " was not told by the stream as it is");
}

void Verdict::OnOrder(Story& story, const Words& words) {
    m_asked.insert(words[1]);
    story.orders.insert(words[1]);
}

void Verdict::OnRegistered(Story& story, const Words& words) {
    Demand(m_byId[words[1]] == words[2], words[2] + " is gone");
    Demand(story.orders.erase(words[1]) == 1, words[1] + " was answered twice");
    story.held[words[2]];
}

void Verdict::OnChange(Story& story, const Words& words) {
    story.pending[words[1]] = {words[2], words[3]};
    if (words[2] == kStatusPaused) m_paused.insert(words[1]);
}

void Verdict::OnChanged(Story& story, const Words& words) {
    const auto change = story.pending.extract(words[1]);
    Demand(!change.empty(), words[1] + ": a change was answered twice");
    if (words[2] == "done") story.held[words[1]] = change.mapped();
}

void Verdict::OnStream(Story& story, const Words& words) {
    story.stream[words[1]] = words[2] + words[3];
    Demand(words[3] <= Next(words[1]), words[1] + ": an instalment that was told is gone");
}

void Verdict::OnExchangeOrder(Story&, const Words& words) {
    Demand(DaysOf(words[1]).contains(words[2]), words[2] + " is gone");
    ++m_seen;
}

std::string Verdict::JudgeAll() {
    for (const auto& [id, number] : m_byId) {
        Demand(m_asked.contains(id), number + " is no dealer's");
        JudgeInstalments(Found(number));
    }
    return std::to_string(m_byId.size()) + " registrations, of which " + std::to_string(m_told) + " told, and "
           + std::to_string(m_orders.size()) + " instalments, looked at " + std::to_string(m_seen)
           + " times, until " + RecordDate(m_server.Clock().Today());
}

// One a day from the first on; a pause leaves days out.
void Verdict::JudgeInstalments(const Registration& registration) {
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

bool Verdict::IsOpen(sys_days day) const {
    return std::chrono::weekday(day).iso_encoding() < 6 && !m_closed.contains(day);
}

const Registration& Verdict::Found(const std::string& number) const {
    const Registration* found = m_server.Find(number);
    Demand(found != nullptr, number + " is gone");
    return *found;
}

std::string Verdict::Next(const std::string& number) const {
    return std::to_string(DateNumber(DateOf(Found(number), tag::nextExecutionDate)));
}

const std::map<std::string, sys_days>& Verdict::DaysOf(const std::string& number) {
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

} // namespace vesk

// What the server does by its clock: which day it is, and the instalments that are due.
//
// An instalment is one journal record, its exchange order with its number and its place in the schedule. How
// far a registration is, its next day and its end follow from it, now as at a replay.

#include "host/server/Server.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;
using std::chrono::sys_days;

constexpr std::string_view kRecordKind = "clock";
constexpr std::uint32_t kTagAhead = 1; // the journal's name of the field
constexpr std::int64_t kDaySeconds = 86'400;
constexpr Date kLastDate{std::chrono::year(2099), std::chrono::December, std::chrono::day(31)};
constexpr std::int64_t kMostAhead = 130 * 366 * kDaySeconds;

// What is done between two looks at the clock: one flush of the journal, and some work per registration.
constexpr std::size_t kInstalmentsAtOnce = 256;
constexpr std::size_t kSchedulesAtOnce = 1024;

// Some gigabytes of memory. Years of thousands of daily plans would take it all.
constexpr std::size_t kMostOrders = 5'000'000; // as the text says
constexpr const char* kFull = "The server executes nothing more: it holds 5000000 exchange orders";

} // namespace

std::string Server::AdvanceTo(Date date) {
    if (!m_replayError.empty()) return m_replayError;
    if (!date.ok() || date > kLastDate) return "The clock goes no further than " + RecordDate(kLastDate);
    if (m_orderCount >= kMostOrders) return kFull;
    m_stoppedOn.reset();
    const auto days = (sys_days(date) - sys_days(Today())).count();
    if (days <= 0) return {};
    std::int64_t ahead = m_aheadSeconds + days * kDaySeconds;
    // The zone's clocks may go forward or back on the way.
    constexpr std::int64_t hour = 3600;
    const Date reached = m_clock.localDate(m_clock.now() + ahead);
    if (reached != date) ahead += reached < date ? hour : -hour;
    if (std::string fault = Write(ClockRecord(ahead)); !fault.empty()) return fault;
    m_aheadSeconds = ahead;
    return {};
}

std::string Server::AdvanceToNextInstalment() {
    std::optional<sys_days> next = m_due.FirstDay();
    // Not scheduled here: those that hear of it would get all at once.
    if (m_unscheduled) {
        next.reset();
        for (const Registration& registration : m_registrations)
            if (const auto day = NextExecution(registration)) next = next ? std::min(*next, *day) : *day;
    }
    if (!next) return "There is no instalment to come";
    return AdvanceTo(std::max(*next, sys_days(Today())));
}

std::string Server::ClockRecord(std::int64_t ahead) {
    FieldRecord clock;
    clock.Set(kTagAhead, std::to_string(ahead));
    return clock.JsonAs(kRecordKind);
}

bool Server::ReplayClock(std::string_view record) {
    FieldRecord clock;
    if (!RecordReader(record).TakeAll(kRecordKind, clock)) return false;
    const auto ahead = WholeNumber(clock.Text(kTagAhead));
    if (!ahead || *ahead > kMostAhead) return false;
    m_aheadSeconds = *ahead;
    return true;
}

void Server::Restrict(const RestrictedRange& range) {
    for (Registration& registration : m_registrations) {
        if (registration.Text(tag::sipStatus) != kStatusPaused) continue;
        if (const auto plan = registration.Plan())
            LapseBefore(range.since, *plan, m_market, registration.progress);
    }
    m_market.restricted.Set(range);
}

bool Server::HasDue() const {
    if (!m_replayError.empty() || m_stoppedOn == Today() || m_orderCount >= kMostOrders) return false;
    if (m_unscheduled) return true;
    const auto first = m_due.FirstDay();
    return first && *first <= sys_days(Today());
}

Executed Server::ExecuteDue(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Executed done;
    while (HasDue()) {
        if (m_unscheduled)
            ScheduleSome();
        else
            done.fault = ExecuteSome(done.instalments);
        if (!done.fault.empty()) m_stoppedOn = Today();
        if (std::chrono::steady_clock::now() >= end) break;
    }
    return done;
}

void Server::ScheduleSome() {
    const std::size_t first = *m_unscheduled, end = std::min(first + kSchedulesAtOnce, m_registrations.size());
    for (std::size_t place = first; place < end; ++place)
        if (Schedule(place)) Tell(m_registrations[place]);
    m_unscheduled = end;
    if (end == m_registrations.size()) m_unscheduled.reset();
}

void Server::PlaceInstalment(const Registration& registration, const Progress& progress, sys_days day,
                             NewOrders& made) const {
    const ExecutionPlan plan{{day}, PriceOf(registration), m_config.fills.seed};
    const std::size_t sequence = m_orderCount + made.orders.size() + 1;
    ExchangeOrder order = PlaceOnExchange({registration, plan, m_config.fills, day, sequence});
    order.instalment = {progress.executed + 1, progress.place};
    made.Add(std::move(order));
}

std::string Server::ExecuteSome(std::size_t& count) {
    const sys_days day = *m_due.FirstDay();
    const std::vector<std::size_t> places = m_due.First(kInstalmentsAtOnce);
    NewOrders made;
    for (const std::size_t place : places)
        PlaceInstalment(m_registrations[place], m_registrations[place].progress, day, made);
    if (std::string fault = Keep(std::move(made)); !fault.empty()) return fault;
    for (const std::size_t place : places) {
        Schedule(place);
        Tell(m_registrations[place]);
    }
    count += places.size();
    return m_orderCount < kMostOrders ? "" : kFull;
}

std::string Server::ExecuteDueOf(std::size_t place) {
    const Registration& registration = m_registrations[place];
    const auto plan = registration.Plan();
    if (!plan || registration.Text(tag::sipStatus) != kStatusActive) return {};
    const sys_days today = Today();
    NewOrders made;
    for (Progress progress = registration.progress; progress.executed < plan->periods;) {
        const sys_days day = ExecutionDay(*plan, progress, m_market);
        if (day > today) break;
        PlaceInstalment(registration, progress, day, made);
        progress = {progress.executed + 1, progress.place + 1, day};
    }
    if (made.orders.empty()) return {};
    if (std::string fault = Keep(std::move(made)); !fault.empty()) return fault;
    Schedule(place);
    Tell(registration);
    return {};
}

sys_days Server::ExecutedUntil() const {
    const sys_days today = Today();
    if (m_unscheduled) return std::min(today, m_market.restricted.Since());
    return std::min(today, m_due.FirstDay().value_or(today));
}

void Server::Count(const ExchangeOrder& order) {
    if (!order.instalment) return;
    const std::string number(order.order.Text(tag::registrationNumber));
    Registration& registration = m_registrations[m_byNumber.at(number)];
    const Instalment& instalment = *order.instalment;
    const auto day = PlacementDay(order.order);
    const auto plan = registration.Plan();
    if (!day || !plan || instalment.number != registration.progress.executed + 1) return;
    registration.progress = {instalment.number, instalment.place + 1, *day};
    if (instalment.number < plan->periods) return;
    registration.Set(tag::sipStatus, kStatusExpired);
    registration.Set(tag::nextExecutionDate, RecordDate(*day));
}

std::optional<sys_days> Server::NextExecution(const Registration& registration) const {
    const auto plan = registration.Plan();
    if (!plan || registration.Text(tag::sipStatus) != kStatusActive) return std::nullopt;
    return ExecutionDay(*plan, registration.progress, m_market);
}

std::optional<sys_days> Server::SetNextExecution(Registration& registration) const {
    const auto day = NextExecution(registration);
    if (day) registration.Set(tag::nextExecutionDate, RecordDate(*day));
    return day;
}

bool Server::Schedule(std::size_t place) {
    Registration& registration = m_registrations[place];
    const std::string before(registration.Text(tag::nextExecutionDate));
    const auto day = SetNextExecution(registration);
    if (day)
        m_due.Put(place, *day);
    else
        m_due.Remove(place);
    return day && registration.Text(tag::nextExecutionDate) != before;
}

} // namespace vesk

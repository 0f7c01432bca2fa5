#include "host/server/Clockwork.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <ctime>
#include <set>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;
using std::chrono::sys_days;

constexpr std::string_view kClockRecord = "clock";
constexpr std::uint32_t kTagAhead = 1; // the journal's name of the field
constexpr std::int64_t kDaySeconds = 86'400;
constexpr Date kLastDate{std::chrono::year(2099), std::chrono::December, std::chrono::day(31)};
constexpr std::int64_t kMostAhead = kDaySeconds * 366 * 130;

// What is done between two looks at the clock: one flush of the journal, and some work per registration.
constexpr std::size_t kInstalmentsAtOnce = 128;
constexpr std::size_t kSchedulesAtOnce = 1024;

// Some gigabytes of memory. Years of thousands of daily plans would take it all.
constexpr std::size_t kMostExchangeOrders = 5'000'000; // as the text says
constexpr const char* kFull = "The server executes nothing more: it holds 5000000 exchange orders";

std::string ClockRecord(std::int64_t ahead) {
    FieldRecord clock;
    clock.Set(kTagAhead, std::to_string(ahead));
    return clock.JsonAs(kClockRecord);
}

} // namespace

ServerClock SystemClock() {
    return {[] { return static_cast<std::int64_t>(std::time(nullptr)); },
            [](std::int64_t seconds) {
                const auto time = static_cast<std::time_t>(seconds);
                const std::tm* local = std::localtime(&time);
                if (!local) return std::chrono::year_month_day{};
                return std::chrono::year(local->tm_year + 1900)
                       / std::chrono::month(static_cast<unsigned>(local->tm_mon + 1))
                       / std::chrono::day(static_cast<unsigned>(local->tm_mday));
            }};
}

Clockwork::Clockwork(const ServerConfig& config, Registrations& registrations, ServerJournal& journal,
                     ServerClock clock)
    : m_config(config), m_registrations(registrations), m_journal(journal), m_clock(std::move(clock)) {
    m_market.nonTrading = m_config.nonTrading;
    std::sort(m_market.nonTrading.begin(), m_market.nonTrading.end());
}

std::string Clockwork::AdvanceTo(Date date) {
    if (!m_journal.ReplayError().empty()) return m_journal.ReplayError();
    if (!date.ok() || date > kLastDate) return "The clock goes no further than " + RecordDate(kLastDate);
    if (m_registrations.OrderCount() >= kMostExchangeOrders) return kFull;
    m_halt.reset();
    const auto days = (sys_days(date) - sys_days(Today())).count();
    if (days <= 0) return {};
    std::int64_t ahead = m_aheadSeconds + days * kDaySeconds;
    // The zone's clocks may go forward or back on the way.
    constexpr std::int64_t hour = 3600;
    const Date reached = m_clock.localDate(m_clock.now() + ahead);
    if (reached != date) ahead += reached < date ? hour : -hour;
    if (std::string fault = m_journal.Write(ClockRecord(ahead)); !fault.empty()) return fault;
    m_aheadSeconds = ahead;
    return {};
}

std::string Clockwork::AdvanceToNextInstalment() {
    std::optional<sys_days> next = m_due.FirstDay();
    // Not scheduled here: those that hear of it would get all at once.
    if (m_unscheduled) {
        next.reset();
        for (const Registration& registration : m_registrations.All())
            if (const auto day = NextExecution(registration)) next = next ? std::min(*next, *day) : *day;
    }
    if (!next) return "There is no instalment to come";
    return AdvanceTo(std::max(*next, sys_days(Today())));
}

bool Clockwork::Replay(std::string_view record) {
    if (const auto range = RestrictedRange::FromJson(record)) {
        Apply(*range);
        return true;
    }
    FieldRecord clock;
    if (!RecordReader(record).TakeAll(kClockRecord, clock)) return false;
    const auto ahead = WholeNumber(clock.Text(kTagAhead));
    if (!ahead || *ahead > kMostAhead) return false;
    m_aheadSeconds = *ahead;
    return true;
}

void Clockwork::Clear() {
    m_market.restricted = {};
    m_aheadSeconds = 0;
    m_due = {};
    m_unscheduled.reset();
}

void Clockwork::WriteTo(const Journal::Sink& sink) const {
    sink(ClockRecord(m_aheadSeconds));
    for (const RestrictedRange& range : m_market.restricted.Ranges())
        sink(range.Json());
}

std::string Clockwork::Restrict(RestrictedRange range) {
    // What is due and not yet executed goes by the new days.
    range.since = std::min(range.since, ExecutedUntil());
    if (std::string fault = m_journal.Write(range.Json()); !fault.empty()) return fault;
    Apply(range);
    m_unscheduled = 0;
    return {};
}

void Clockwork::Apply(const RestrictedRange& range) {
    for (std::size_t place = 0; place < m_registrations.Size(); ++place) {
        Registration& registration = m_registrations.At(place);
        if (registration.Text(tag::sipStatus) != kStatusPaused) continue;
        if (const auto plan = registration.Plan())
            LapseBefore(range.since, *plan, m_market, registration.progress);
    }
    m_market.restricted.Set(range);
}

bool Clockwork::HasDue() const {
    if (!m_journal.ReplayError().empty() || (m_halt && *m_halt == Halt{Today(), m_journal.Writes()})
        || m_registrations.OrderCount() >= kMostExchangeOrders)
        return false;
    if (m_unscheduled) return true;
    const auto first = m_due.FirstDay();
    return first && *first <= sys_days(Today());
}

Executed Clockwork::ExecuteDue(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Executed done;
    while (HasDue()) {
        if (m_unscheduled)
            ScheduleSome();
        else
            done.fault = ExecuteSome(done.instalments);
        if (!done.fault.empty()) m_halt = Halt{Today(), m_journal.Writes()};
        if (std::chrono::steady_clock::now() >= end) break;
    }
    return done;
}

void Clockwork::ScheduleSome() {
    const std::size_t first = *m_unscheduled, end = std::min(first + kSchedulesAtOnce, m_registrations.Size());
    for (std::size_t place = first; place < end; ++place)
        if (Schedule(place)) m_registrations.Tell(m_registrations.At(place));
    m_unscheduled = end;
    if (end == m_registrations.Size()) m_unscheduled.reset();
}

void Clockwork::PlaceInstalment(const Registration& registration, const PlanProgress& progress, sys_days day,
                                NewOrders& made) const {
    const ExecutionPlan plan{{day}, PriceOf(registration), m_config.fills.seed};
    const std::size_t sequence = m_registrations.OrderCount() + made.orders.size() + 1;
    ExchangeOrder order = PlaceOnExchange({registration, plan, m_config.fills, day, sequence});
    order.instalment = {progress.executed + 1, progress.place};
    made.Add(std::move(order));
}

std::string Clockwork::ExecuteSome(std::size_t& count) {
    const sys_days day = *m_due.FirstDay();
    const std::vector<std::size_t> places = m_due.First(kInstalmentsAtOnce);
    NewOrders made;
    for (const std::size_t place : places)
        PlaceInstalment(m_registrations.At(place), m_registrations.At(place).progress, day, made);
    if (std::string fault = Keep(std::move(made)); !fault.empty()) return fault;
    for (const std::size_t place : places) {
        Schedule(place);
        m_registrations.Tell(m_registrations.At(place));
    }
    count += places.size();
    return m_registrations.OrderCount() < kMostExchangeOrders ? "" : kFull;
}

std::string Clockwork::ExecuteDueOf(std::size_t place) {
    const Registration& registration = m_registrations.At(place);
    const auto plan = registration.Plan();
    if (!plan || registration.Text(tag::sipStatus) != kStatusActive) return {};
    const sys_days today = Today();
    NewOrders made;
    for (PlanProgress progress = registration.progress; progress.executed < plan->periods;) {
        const sys_days day = ExecutionDay(*plan, progress, m_market);
        if (day > today) break;
        PlaceInstalment(registration, progress, day, made);
        progress = {progress.executed + 1, progress.place + 1, day};
    }
    if (made.orders.empty()) return {};
    if (std::string fault = Keep(std::move(made)); !fault.empty()) return fault;
    Schedule(place);
    m_registrations.Tell(registration);
    return {};
}

sys_days Clockwork::ExecutedUntil() const {
    const sys_days today = Today();
    if (m_unscheduled) return std::min(today, m_market.restricted.Since());
    return std::min(today, m_due.FirstDay().value_or(today));
}

std::optional<sys_days> Clockwork::NextExecution(const Registration& registration) const {
    const auto plan = registration.Plan();
    if (!plan || registration.Text(tag::sipStatus) != kStatusActive) return std::nullopt;
    return ExecutionDay(*plan, registration.progress, m_market);
}

std::optional<sys_days> Clockwork::SetNextExecution(Registration& registration) const {
    const auto day = NextExecution(registration);
    if (day) registration.Set(tag::nextExecutionDate, RecordDate(*day));
    return day;
}

bool Clockwork::Schedule(std::size_t place) {
    Registration& registration = m_registrations.At(place);
    const std::string before(registration.Text(tag::nextExecutionDate));
    const auto day = SetNextExecution(registration);
    if (day)
        m_due.Put(place, *day);
    else
        m_due.Remove(place);
    return day && registration.Text(tag::nextExecutionDate) != before;
}

std::string Clockwork::Execute(const Registration& registration, const ExecutionPlan& plan) {
    if (!m_journal.ReplayError().empty()) return m_journal.ReplayError();
    NewOrders made;
    for (const Date day : plan.days) {
        const std::size_t sequence = m_registrations.OrderCount() + made.orders.size() + 1;
        made.Add(PlaceOnExchange({registration, plan, m_config.fills, day, sequence}));
    }
    return Keep(std::move(made));
}

std::string Clockwork::Keep(NewOrders made) {
    if (std::string fault = m_journal.Write(made.records); !fault.empty()) return fault;
    for (ExchangeOrder& order : made.orders)
        m_registrations.Enter(std::move(order));
    return {};
}

std::vector<Date> Clockwork::OpenDays(const Registration& registration, std::size_t count) const {
    const auto start = ParseRecordDate(registration.Text(tag::startDate));
    if (!start) return {};
    Date last = Today();
    for (const tag::Tag tag : {tag::endDate, tag::cancelledDate})
        if (const auto date = ParseRecordDate(registration.Text(tag))) last = std::min(last, *date);
    std::set<Date> taken;
    for (const FieldRecord& order : m_registrations.HistoryOf(registration.Number()).orders)
        taken.insert(PlacementDay(order).value_or(last));

    constexpr std::chrono::year earliest(1970);
    const std::string_view frequency = registration.Text(tag::frequency);
    std::vector<Date> days;
    for (int i = InstalmentsBefore(*start, frequency, last); days.size() < count; --i) {
        const Date due = InstalmentDate(*start, frequency, i);
        if (due.year() < earliest) break;
        const Date day = m_market.FirstOpen(due);
        if (day <= last && taken.insert(day).second) days.push_back(day);
    }
    std::reverse(days.begin(), days.end());
    return days;
}

} // namespace vesk

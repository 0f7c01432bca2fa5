#include "host/server/sample/SampleOrders.h"

#include "host/server/Server.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;
using std::chrono::sys_days;

constexpr int kDaysBack = 730;

const std::vector<std::string_view> kRemarks{"Client's request", "Funds not available", "Wrong scrip", " "};

struct Day {
    Date today;
    Date entered;
    const MarketDays& market;
};

// What fell due until today counts as executed, on the days on which the server executes.
void SetProgress(Registration& registration, const InstalmentPlan& plan, const Day& day) {
    PlanProgress& progress = registration.progress = BeginPlan(plan, day.entered);
    sys_days next = ExecutionDay(plan, progress, day.market);
    for (; progress.executed < plan.periods && next <= sys_days(day.today);
         next = ExecutionDay(plan, progress, day.market))
        progress = {progress.executed + 1, progress.place + 1, next};
    registration.Set(tag::endDate, RecordDate(LastDueDate(plan, progress)));
    registration.Set(tag::nextExecutionDate,
                     RecordDate(progress.executed < plan.periods ? next : progress.after));
}

void SetStatus(Registration& registration, const Day& day, int periods, SampleOrders& orders) {
    const std::size_t lot = orders.Below(10);
    std::string_view status = registration.progress.executed == periods ? kStatusExpired : kStatusActive;
    if (lot < 3) status = kStatusCancelled;
    if (status == kStatusActive && lot == 3) status = kStatusPaused;
    registration.Set(tag::sipStatus, status);
    if (status == kStatusCancelled) {
        const auto daysSince = static_cast<std::size_t>((sys_days(day.today) - sys_days(day.entered)).count());
        const auto after = std::chrono::days(static_cast<int>(orders.Below(daysSince + 1)));
        registration.Set(tag::userText, orders.AnyOf(kRemarks));
        registration.Set(tag::cancelledDate, RecordDate(sys_days(day.entered) + after));
        registration.Set(tag::cancelledBy, registration.Text(tag::loginId));
    }
}

Registration MakeSample(const Day& day, const UserIdentity& user, std::size_t sequence, SampleOrders& orders) {
    Registration registration = orders.Next();
    const auto periods = static_cast<int>(WholeNumber(registration.Text(tag::totalPeriod)).value_or(1));
    const Date start = sys_days(day.entered) + std::chrono::days(1 + static_cast<int>(orders.Below(30)));
    registration.Set(tag::loginId, user.loginId);
    registration.Set(tag::peerIdA, user.peerIdA);
    registration.Set(tag::peerIdB, user.peerIdB);
    registration.Set(tag::startDate, RecordDate(start));
    registration.Set(tag::registrationDate, RecordDate(day.entered));
    registration.Set(tag::registrationNumber, DatedNumber(kNumberPrefix, day.entered, sequence));
    registration.Set(tag::orderId, "sample-" + std::to_string(sequence));
    registration.Set(tag::streamName, kStreamName);
    const std::string frequency(registration.Text(tag::frequency));
    SetProgress(registration, {start, frequency, periods}, day);
    SetStatus(registration, day, periods, orders);
    registration.Shrink();
    return registration;
}

} // namespace

SampleOrders::SampleOrders(const SampleMarket& market, const ServerConfig& config, std::uint64_t seed)
    : m_market(market), m_frequencies(config.frequencies), m_random(seed) {
    std::erase_if(m_frequencies, [](const Frequency& row) { return !IsKnownFrequency(row.name); });
    if (m_frequencies.empty()) m_frequencies = {{"daily"}, {"weekly"}, {"monthly"}};
}

Registration SampleOrders::Next() {
    const SampleScrip& scrip = AnyOf(m_market.scrips);
    const Frequency& frequency = AnyOf(m_frequencies);
    const bool byValue = Below(2) != 0;
    // Paise, of whole rupees.
    const std::size_t value = byValue ? 100 * (100 + Below(50'000)) : 1 + Below(500);
    const std::size_t periods = static_cast<std::size_t>(frequency.minimumPeriods.value_or(1)) + 1 + Below(36);
    Registration order;
    order.Reserve();
    order.Set(tag::frequency, frequency.name);
    order.Set(tag::token, scrip.token);
    order.Set(tag::side, Below(4) ? "B" : "S");
    order.Set(tag::validity, "DAY");
    order.Set(tag::orderType, "MKT");
    order.Set(tag::amountOrQuantity, std::to_string(value));
    order.Set(tag::account, AnyOf(m_market.accounts));
    order.Set(tag::investType, byValue ? "value" : "qty");
    order.Set(tag::exchange, scrip.exchange);
    order.Set(tag::tradingSymbol, scrip.tradingSymbol);
    order.Set(tag::totalPeriod, std::to_string(periods));
    order.Set(tag::product, "CNC");
    order.Set(tag::orderSource, "TWS");
    return order;
}

std::string Fill(Server& server, const FillPlan& plan) {
    if (!server.Journal().ReplayError().empty()) return server.Journal().ReplayError();
    if (plan.users.empty() || plan.market.accounts.empty() || plan.market.scrips.empty())
        return "nothing to make registrations of";
    constexpr std::size_t batchSize = 16'384;
    const Date today = server.Clock().Today();
    SampleOrders orders(plan.market, server.Config(), plan.seed);
    for (std::size_t done = 0; done < plan.count;) {
        const std::size_t end = std::min(plan.count, done + batchSize);
        const std::size_t first = server.Held().NextSequence();
        std::vector<Registration> batch;
        for (; done < end; ++done) {
            // Oldest first, as if they had come one after the other.
            const auto age = kDaysBack - static_cast<int>(done * kDaysBack / plan.count);
            const Day day{today, sys_days(today) - std::chrono::days(age), server.Clock().Market()};
            batch.push_back(MakeSample(day, orders.AnyOf(plan.users), first + batch.size(), orders));
        }
        if (std::string fault = server.EnterMadeUp(std::move(batch)); !fault.empty()) return fault;
    }
    return {};
}

std::size_t PlaceSampleOrders(Server& server, const UserIdentity& user, const SampleMarket& market,
                              std::uint64_t seed, std::size_t count) {
    SampleOrders orders(market, server.Config(), seed);
    qmx::MessageWriter writer;
    std::size_t registered = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Registration order = orders.Next();
        order.Set(tag::requestName, "add_sip_orders");
        order.Set(tag::loginId, user.loginId);
        order.Set(tag::peerIdA, user.peerIdA);
        order.Set(tag::peerIdB, user.peerIdB);
        order.Set(tag::customerFirm, "C");
        order.Set(tag::startDate, std::to_string(server.Clock().Now() + 86'400));
        // Unlike a count of its own it is new after a restart too.
        order.Set(tag::orderId, user.loginId + "-" + std::to_string(server.Held().NextSequence()));
        order.AddTo(writer.Start());
        for (const std::string& answer : server.Handle(writer.Handle(), user).answers)
            registered += !qmx::Has(qmx::MessageReader(answer).Handle(), tag::errorCode);
    }
    return registered;
}

} // namespace vesk

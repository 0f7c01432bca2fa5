// Many registrations at once, of every kind that years of trading leave behind.

#include "host/server/Server.h"
#include "host/server/sample/SampleOrders.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

using Date = std::chrono::year_month_day;
using std::chrono::sys_days;

constexpr int kDaysBack = 730;

const std::vector<std::string_view> kReasons{"Client's request", "Funds not available", "Wrong scrip", " "};

struct Day {
    Date today;
    Date entered;
};

// Whatever fell due until today counts as executed.
void SetProgress(Registration& registration, const InstalmentPlan& plan, Date today) {
    const Date tomorrow = sys_days(today) + std::chrono::days(1);
    const int due = std::min(InstalmentsBefore(plan.start, plan.frequency, tomorrow), plan.periods);
    registration.progress = {due, due, today};
    registration.Set(tag::endDate, RecordDate(LastDueDate(plan, registration.progress)));
    const Date next = InstalmentDate(plan.start, plan.frequency, std::min(due, plan.periods - 1));
    registration.Set(tag::nextExecutionDate, RecordDate(next));
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
        registration.Set(tag::userText, orders.AnyOf(kReasons));
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
    SetProgress(registration, {start, frequency, periods}, day.today);
    SetStatus(registration, day, periods, orders);
    registration.Shrink();
    return registration;
}

} // namespace

std::string Server::Fill(const FillPlan& plan) {
    if (!m_replayError.empty()) return m_replayError;
    if (plan.users.empty() || plan.market.accounts.empty() || plan.market.scrips.empty())
        return "nothing to make registrations of";
    constexpr std::size_t batchSize = 16'384;
    const Date today = Today();
    SampleOrders orders(plan.market, m_config, plan.seed);
    MakeRoom(plan.count);
    std::vector<Registration> batch;
    for (std::size_t done = 0; done < plan.count; done += batch.size()) {
        batch.clear();
        JournalBatch records;
        for (std::size_t i = done; i < std::min(plan.count, done + batchSize); ++i) {
            // Oldest first, as if they had come one after the other.
            const auto age = kDaysBack - static_cast<int>(i * kDaysBack / plan.count);
            const Day day{today, sys_days(today) - std::chrono::days(age)};
            const std::size_t sequence = m_registrations.size() + batch.size() + 1;
            batch.push_back(MakeSample(day, orders.AnyOf(plan.users), sequence, orders));
            SetNextExecution(batch.back());
            records.Add(batch.back().Json());
        }
        if (std::string fault = Write(records); !fault.empty()) return fault;
        for (Registration& registration : batch)
            Schedule(Enter(std::move(registration)));
    }
    return {};
}

} // namespace vesk

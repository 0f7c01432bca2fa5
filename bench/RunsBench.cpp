// planfold_runs_bench [ROUNDS]   reckons up the runs to come of a million registrations; a unit is one
#include "bench/Rounds.h"
#include "plugin/base/Text.h"
#include "plugin/morning/RunReckoning.h"
#include "plugin/orderentry/PlannedDates.h"

#include <memory>

namespace {

using namespace planfold;

constexpr std::uint32_t kRecords = 1'000'000, kClients = 200;
const Day kToday = *ReadServerDay("22-Mar-2027");

// Plans of every frequency and value that began within the last two years; one in ten is paused.
std::shared_ptr<OrderCache> SampleBook() {
    const auto book = std::make_shared<OrderCache>();
    const ClosedDays closed;
    for (std::uint32_t i = 0; i < kRecords; ++i) {
        const Day start = kToday - std::chrono::days(i * 7 % 730);
        const Frequency& frequency = kFrequencies[i % kFrequencyCount];
        const auto schedule = Schedule::Of(start, frequency.word);
        const Day next = closed.FirstOpen(*schedule->Due(schedule->PlaceBy(kToday) + 1));
        const std::string number = Format("SIP%010u", i), account = Format("CL%u", i * 31 % kClients),
                          startDate = FormatPlannedDate(start), nextDate = FormatPlannedDate(next),
                          end = FormatPlannedDate(next + std::chrono::days(400)),
                          amount = Format("%u.00", 100 + i % 50000);
        OrderChanges changes;
        changes[OrderField::account] = account;
        changes[OrderField::frequency] = frequency.word;
        changes[OrderField::startDate] = changes[OrderField::registrationDate] = startDate;
        changes[OrderField::nextExecutionDate] = nextDate;
        changes[OrderField::endDate] = end;
        changes[OrderField::sipStatus] = i % 10 ? "active" : "Paused";
        changes[OrderField::side] = i % 3 ? "SIP" : "SWP";
        changes[OrderField::investType] = i % 2 ? "value" : "qty";
        changes[i % 2 ? OrderField::amount : OrderField::quantity] = amount;
        (*book)[book->Add(number)].Apply(changes);
    }
    return book;
}

} // namespace

int main(int count, char** arguments) {
    const auto book = SampleBook();
    std::vector<bench::Case> cases;
    for (const int length : {1, 7, 30, 366})
        cases.push_back({Format("runs-%d-days", length),
                         [book, length] {
                             RunReckoning reckoning(*book, {kToday, kToday + std::chrono::days(length - 1)},
                                                    kToday, ClosedDays());
                             while (reckoning.Step()) {
                             }
                             const UpcomingRows rows = reckoning.Take();
                             bench::Keep(&rows);
                         },
                         kRecords});
    bench::Print(bench::RunInTurns(cases, bench::RoundsAsked(count, arguments)));
}

// What runs in the days to come: the calendar's rule by hand, and every figure beside what the server then
// executes.
#include "host/server/sample/SampleOrders.h"
#include "host/server/schedule/Schedule.h"
#include "plugin/morning/RunReckoning.h"
#include "tests/server/ServerFixture.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace planfold {
namespace {

using std::chrono::days;

Day On(const char* date) {
    return *ReadServerDay(date);
}
std::string Dates(Schedule schedule, std::int64_t place, std::int64_t left, std::optional<Day> first,
                  const ClosedDays& closed) {
    RunsToCome runs(schedule, place, left, first, closed);
    std::string text;
    while (const auto run = runs.Next())
        text +=
            vesk::RecordDate(run->due).substr(0, 6) + ">" + vesk::RecordDate(run->expected).substr(0, 6) + " ";
    return text;
}

// Worked out by hand with a calendar.
TEST(RunCalendar, MovesRunsFromClosedDaysToTheFirstOpenOneBehindTheRunBefore) {
    const std::uint32_t dates[] = {20270503, 99, 20279999, 20270126};
    const NonTradingDates host{4, 0, dates};
    const RestrictedRange range[] = {{2027, 8, 14}};
    struct Row {
        const char *start, *frequency;
        std::int64_t place, left;
        const char *first, *runs;
    };
    const Row rows[] = {
        {"30-Apr-2027", "daily", 0, 4, "", "30-Apr>30-Apr 01-May>04-May 02-May>05-May 03-May>06-May "},
        {"31-Jan-2027", "monthly", 0, 4, "", "31-Jan>01-Feb 28-Feb>01-Mar 31-Mar>31-Mar 30-Apr>30-Apr "},
        {"26-Jan-2027", "weekly", 0, 2, "", "26-Jan>27-Jan 02-Feb>02-Feb "},
        {"06-Feb-2027", "weekly", 0, 3, "", "06-Feb>15-Feb 13-Feb>16-Feb 20-Feb>22-Feb "},
        {"06-Feb-2027", "weekly", 1, 2, "18-Feb-2027", "13-Feb>18-Feb 20-Feb>22-Feb "}, // the server's own day
        {"29-Feb-2028", "yearly", 0, 2, "", "29-Feb>29-Feb 28-Feb>28-Feb "},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Dates(*Schedule::Of(On(row.start), row.frequency), row.place, row.left,
                        ReadServerDay(row.first), ClosedDays(&host, range)),
                  row.runs)
            << row.start << row.frequency;
    for (const char* text :
         {"", "05-Mar", "31-Feb-2027", "x-Mar-2027", "05-Mrz-2027", "05-Mar-0", "5-Mar-99999"})
        EXPECT_FALSE(ReadServerDay(text)) << text;
}

// Days before the registration took no run, so nothing was made up for on them.
TEST(RunCalendar, APlanThatWasRegisteredLateBeginsThere) {
    const struct {
        const char *frequency, *registered, *next;
        std::int64_t place;
    } rows[] = {
        {"daily", "", "11-Mar-2027", 8},
        {"daily", "01-Mar-2027", "11-Mar-2027", 8},
        {"daily", "10-Mar-2027", "11-Mar-2027", 10},
        {"weekly", "10-Mar-2027", "15-Mar-2027", 2},
    };
    for (const auto& [frequency, registered, next, place] : rows)
        EXPECT_EQ(Schedule::Of(On("01-Mar-2027"), frequency)
                      ->PlaceOf(On(next), ReadServerDay(registered), ClosedDays()),
                  place)
            << frequency << registered;
}

// Runs as the window adds them up, a line a client.
using Figures = std::map<std::string, RunSums>;
std::string Dump(const Figures& figures) {
    std::ostringstream text;
    for (const auto& [client, sums] : figures) {
        text << client << " " << sums.runs << " " << sums.moved;
        for (const std::int64_t need : sums.needs)
            text << " " << need;
        text << "\n";
    }
    return text.str();
}

class RandomBook {
public:
    RandomBook(const std::filesystem::path& path, unsigned seed) : m_random(seed) {
        for (vesk::Frequency& frequency : m_config.frequencies)
            frequency.minimumPeriods = 1;
        for (int i = Below(25); i > 0; --i)
            m_config.nonTrading.push_back(m_today + days(Below(300)));
        vesk::WriteJournal(path, "");
        m_running.emplace(path, m_config);
        // Both years, or none.
        for (int year = 2026, any = Below(3); any && year < 2028; ++year) {
            const int from = 1 + Below(28), to = std::min(31, from + Below(8));
            m_running->Ask("calendar_add_restricted_dates restrictedYear=" + std::to_string(year)
                           + " startDate=" + std::to_string(from) + " restrictedTo=" + std::to_string(to));
            m_ranges.push_back({year, from, to});
        }
        if (seed % 10 == 0) {
            const vesk::SampleMarket market{{"C1", "C2", "C7"}, {{"nse_cm", "1013", "ALPHA-EQ"}}};
            EXPECT_EQ(vesk::Fill(*m_running->server, {150, {m_running->user}, market, seed}), "");
            m_running->AdvanceTo(m_today);
        }
        for (int i = 0; i < 45; ++i) {
            if (Below(2)) Place(i);
            Change();
            Advance(Below(9));
        }
        Advance(1); // what was placed today begins tomorrow
        ReadBook();
    }

    // The days' figures, foretold and as they were; what is changed on the way is left out of both.
    void Compare() {
        const Day first = m_today + days(1);
        std::set<std::string> changed;
        for (int i = 0; i < 90; ++i) {
            Advance(1);
            if (Below(12) == 0) changed.insert(Change());
        }
        std::map<Day, Figures> executed = Executed(first, changed);
        OrderCache unchanged;
        for (RecordId id = 0; id < m_book.Size(); ++id)
            if (!changed.contains(std::string(m_book[id].Number()))) Copy(m_book[id], unchanged);
        const ClosedDays closed = Closed();
        RunSums all, ofDays;
        for (Day day = first; day <= m_today; day += days(1)) {
            ASSERT_EQ(Dump(Foretold(unchanged, {day, day}, first, closed)), Dump(executed[day]))
                << vesk::RecordDate(day) << "\n"
                << Detail(unchanged);
            for (const auto& [client, sums] : executed[day])
                all.Add(sums);
        }
        RunReckoning reckoning(unchanged, {first, m_today}, first, closed);
        while (reckoning.Step()) {
        }
        const UpcomingRows rows = reckoning.Take();
        EXPECT_EQ(rows.total, all);
        for (const RunSums& day : rows.days)
            ofDays.Add(day);
        EXPECT_EQ(ofDays, all);
        runs += all.runs;
        moved += all.moved;
    }

    static inline std::int64_t runs = 0, moved = 0;

private:
    int Below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    const std::vector<vesk::Registration>& Held() const { return m_running->server->Held().All(); }
    void Advance(int count) {
        m_today += days(count);
        m_running->AdvanceTo(m_today);
    }
    void Place(int i) {
        const char* frequencies[] = {"daily", "weekly", "monthly", "yearly"};
        const Day start = m_today + days(Below(60) - 12);
        m_running->Ask(vesk::Order(
            "startDate=" + std::to_string(start.time_since_epoch() / std::chrono::seconds(1)) + " frequency="
            + frequencies[Below(4)] + " totalPeriod=" + std::to_string(1 + Below(Below(2) ? 12 : 200))
            + " account=C" + std::to_string(Below(5)) + " side=" + (Below(3) ? "B" : "S")
            + " investType=" + (Below(2) ? "value" : "qty")
            + " amountOrQuantity=" + std::to_string(1 + Below(100000)) + " orderId=o" + std::to_string(i)));
    }
    // The number of what was asked to change.
    std::string Change() {
        if (Held().empty()) return {};
        const std::string number(
            Held()[static_cast<std::size_t>(Below(static_cast<int>(Held().size())))].Number());
        const std::string changes[] = {"pause_sip_order", "resume_sip_order", "resume_sip_order",
                                       "modify_sip_order amountOrQuantity=" + std::to_string(1 + Below(5000))
                                           + " totalPeriod=" + std::to_string(1 + Below(60)),
                                       "cancel_sip_order"};
        m_running->Ask(changes[Below(Below(3) ? 4 : 5)] + " registrationNumber=" + number);
        return number;
    }
    // As the server tells it.
    void ReadBook() {
        for (const std::string& row : m_running->Finish(m_running->Begin("om_get_sip_orders loginId=USER1"))) {
            const qmx::MessageReader read(row);
            const std::string number(qmx::Text(read.Handle(), tag::registrationNumber));
            if (!number.empty()) ReadOrderRow(read.Handle(), true, std::nullopt, m_book[m_book.Add(number)]);
        }
        for (const vesk::Registration& one : Held())
            m_places[std::string(one.Number())] = one.progress.place;
    }
    static void Copy(const sOrderinfo& from, OrderCache& to) {
        OrderChanges changes;
        for (std::size_t i = 0; i < kOrderFieldCount; ++i)
            changes[static_cast<OrderField>(i)] = from.Text(static_cast<OrderField>(i));
        to[to.Add(from.Number())].Apply(changes);
    }
    // As the host tells them, with the restricted ones or without.
    ClosedDays Closed() {
        for (const auto date : m_config.nonTrading)
            m_dates.push_back(vesk::DateNumber(date));
        const bool withRestricted = Below(2);
        for (const auto date : m_running->server->Clock().Restricted().All())
            if (withRestricted) m_dates.push_back(vesk::DateNumber(date));
        std::ranges::sort(m_dates);
        const NonTradingDates host{static_cast<std::uint32_t>(m_dates.size()), 0, m_dates.data()};
        if (withRestricted) return ClosedDays(&host);
        return ClosedDays(&host, m_ranges);
    }
    static Figures Foretold(const OrderCache& book, RunPeriod period, Day today, const ClosedDays& closed) {
        RunReckoning reckoning(book, period, today, closed);
        while (reckoning.Step()) {
        }
        Figures figures;
        for (const auto& client : reckoning.Take().clients)
            figures[client.account] = client.sums;
        return figures;
    }
    std::map<Day, Figures> Executed(Day first, const std::set<std::string>& changed) {
        std::map<Day, Figures> executed;
        for (const vesk::Registration& one : Held()) {
            const std::string number(one.Number());
            if (changed.contains(number)) continue;
            const bool sells = one.Text(tag::side) == "S", byQuantity = one.Text(tag::investType) == "qty";
            for (const std::string& row :
                 m_running->Finish(m_running->Begin("qry_eq_sip_orders registrationNumber=" + number))) {
                const qmx::MessageReader read(row);
                const auto date =
                    vesk::ParseRecordDate(qmx::Text(read.Handle(), tag::placementTime).substr(0, 11));
                if (!date || Day(*date) < first) continue;
                RunSums& sums = executed[*date][std::string(one.Text(tag::account))];
                ++sums.runs;
                const auto plan = one.Plan();
                const Day due = vesk::InstalmentDate(plan->start, plan->frequency, m_places[number]++);
                sums.moved += !m_running->server->Clock().Market().IsOpen(due);
                const Need needs[] = {Need::pay, Need::receive, Need::buy, Need::deliver};
                sums.Add(needs[2 * byQuantity + sells], *vesk::WholeNumber(one.Text(tag::amountOrQuantity)));
            }
        }
        return executed;
    }
    static std::string Detail(const OrderCache& book) {
        std::string text;
        for (RecordId id = 0; id < book.Size(); ++id)
            for (const OrderField field :
                 {OrderField::account, OrderField::frequency, OrderField::startDate,
                  OrderField::registrationDate, OrderField::nextExecutionDate, OrderField::endDate,
                  OrderField::installmentsRegistered, OrderField::sipStatus})
                text.append(book[id].Text(field)) += field == OrderField::sipStatus ? "\n" : " ";
        return text;
    }

    std::mt19937 m_random;
    vesk::ServerConfig m_config;
    Day m_today{std::chrono::floor<days>(std::chrono::sys_seconds(std::chrono::seconds(vesk::kToday)))};
    std::optional<vesk::RunningServer> m_running;
    std::vector<RestrictedRange> m_ranges;
    std::vector<std::uint32_t> m_dates;
    OrderCache m_book;
    std::map<std::string, int> m_places; // of the next run, as the server knew it
};

TEST(UpcomingRuns, AreWhatTheServerThenExecutes) {
    const vesk::TemporaryFolder folder;
    for (unsigned seed = 1; seed <= 100 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomBook(folder.File("journal"), seed).Compare();
    }
    EXPECT_GT(RandomBook::moved, 1000);
    EXPECT_GT(RandomBook::runs, 8000);
}

} // namespace
} // namespace planfold

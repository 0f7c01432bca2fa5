// Restricted days, and the exchange orders that became of registrations: set, placed, asked for, and there
// after a restart.

#include "host/server/schedule/Schedule.h"
#include "tests/server/ServerFixture.h"

namespace vesk {
namespace {

using Answers = std::vector<std::string>;
const std::string kNumber = "SIP2603020000001";

TEST(RestrictedDays, AreSetYearByYearOrRefusedAndThereAfterARestart) {
    // One after the other: the three fields, and the refusal or nothing.
    const struct {
        const char* from;
        const char* to;
        const char* year;
        const char* refusal = "";
    } rows[] = {
        {"", "2", "2026", "101 userText=The from-day is missing"},
        {"2", "2", "", "101 userText=The year is missing"},
        {"5", "05", "2026"},
        {"0", "5", "2026", "102 userText=The from-day cannot be \"0\""},
        {"1", "32", "2026", "102 userText=The to-day cannot be \"32\""},
        {"31", "1", "2026", "102 userText=The from-day is behind the to-day"},
        {"1", "1", "2047", "102 userText=The year cannot be \"2047\""},
        {"28", "31", "2044"},
        {"29", "30", "2026"},
    };
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    WriteJournal(path, JournalOf({"{\"registration\":{\"64804\":\"OLD\"}}"}));
    const std::string set = "echoedRequest=calendar_add_restricted_dates",
                      get = "echoedRequest=calendar_get_restricted_dates";
    std::string held;
    for (const auto& row : rows) {
        RunningServer running(path);
        EXPECT_EQ(running.Ask(get.substr(6)), Answers{get + held});
        EXPECT_EQ(running.Ask(set.substr(6) + " startDate=" + row.from + " restrictedTo=" + row.to
                              + " restrictedYear=" + row.year),
                  Answers{set + (*row.refusal ? " errorCode=" : "") + row.refusal});
        if (*row.refusal) continue;
        held = std::string(" restrictedYear=") + row.year + " startDate=" + row.from
               + " restrictedTo=" + std::to_string(std::stoi(row.to));
    }
    RunningServer again(path);
    EXPECT_EQ(again.opening.records.size(), 4u);
    EXPECT_EQ(again.Ask(get.substr(6)), Answers{get + held});
    const auto days = again.server->Clock().Restricted().All();
    EXPECT_EQ(days.size(), 22u + 42u);
    EXPECT_TRUE(std::is_sorted(days.begin(), days.end()));
}

TEST(Execution, OpenDaysFollowTheScheduleAndMissWeekendsAndRestrictedDays) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal")); // on Monday, 02-Mar-2026
    const struct {
        const char* registration;
        std::size_t count;
        const char* days;
        bool restricted = false; // from here on the first 26 days of this year's months are
    } rows[] = {
        {"startDate=06-Mar-2026 frequency=monthly", 3, "08-Dec-2025 06-Jan-2026 06-Feb-2026 "},
        {"startDate=06-Mar-2026 frequency=daily", 4, "25-Feb-2026 26-Feb-2026 27-Feb-2026 02-Mar-2026 "},
        {"startDate=01-Jan-2026 frequency=weekly cancelledDate=10-Jan-2026", 2, "01-Jan-2026 08-Jan-2026 "},
        {"startDate=29-Feb-2024 frequency=yearly endDate=28-Feb-2025", 2, "29-Feb-2024 28-Feb-2025 "},
        {"startDate=31-Dec-1969 frequency=yearly endDate=31-Dec-1971", 9, "31-Dec-1970 31-Dec-1971 "},
        {"startDate=soon frequency=daily", 1, ""},
        {"startDate=06-Mar-2026 frequency=daily", 3, "29-Jan-2026 30-Jan-2026 27-Feb-2026 ", true},
    };
    for (const auto& row : rows) {
        if (row.restricted)
            running.Ask("calendar_add_restricted_dates restrictedYear=2026 startDate=1 restrictedTo=26");
        Registration registration;
        for (const auto& [tag, text] : Fields(row.registration))
            registration.Set(tag, text);
        std::string days;
        for (const auto day : running.server->Clock().OpenDays(registration, row.count))
            days += RecordDate(day) + ' ';
        EXPECT_EQ(days, row.days) << row.registration;
    }
}

std::string Executed(RunningServer& running, std::size_t count) {
    const Registration& registration = *running.server->Held().Find(kNumber);
    return running.server->Clock().Execute(registration,
                                           {running.server->Clock().OpenDays(registration, count), 250'000, 1});
}

Answers Rows(RunningServer& running, const char* what) {
    return running.Finish(running.Begin(std::string("qry_eq_sip_") + what + " registrationNumber=" + kNumber));
}

std::string Field(const std::string& message, std::uint32_t tag) {
    return std::string(qmx::Text(qmx::MessageReader(message).Handle(), tag));
}

TEST(Execution, TheRestOfAnOpenOrderLapsesAtTheCloseOfItsDay) {
    using namespace std::chrono;
    const auto day = year(2027) / March / 5;
    const struct {
        std::string_view status;
        year_month_day today;
        std::string_view shown;
    } rows[] = {
        {kStatusOpen, day, kStatusOpen},
        {kStatusOpen, year(2027) / March / 6, "cancelled"},
        {kStatusComplete, year(2027) / March / 6, kStatusComplete},
        {kStatusRejected, year(2028) / March / 6, kStatusRejected},
    };
    for (const auto& row : rows) {
        FieldRecord order;
        order.Set(tag::sipStatus, row.status);
        order.Set(tag::placementTime, "05-Mar-2027 09:15:00");
        EXPECT_EQ(OrderAsOf(row.today, order).Text(tag::sipStatus), row.shown);
    }
}

TEST(Execution, WhatIsNeverToHappenNeverDoes) {
    const std::pair<int, std::string_view> rows[] = {{0, kStatusComplete}, {100, kStatusRejected}};
    for (const auto& [rejected, status] : rows) {
        const TemporaryFolder folder;
        ServerConfig config;
        config.fills.rejected = rejected;
        config.fills.partial = 0;
        RunningServer running(folder.File("journal"), config);
        running.Ask(Order("amountOrQuantity=12345000"));
        EXPECT_EQ(Executed(running, 400), "");
        Answers orders = Rows(running, "orders");
        EXPECT_EQ(orders.size(), 401u);
        orders.pop_back();
        for (const std::string& row : orders)
            ASSERT_EQ(Field(row, tag::sipStatus), status);
    }
}

TEST(Execution, OrdersAndTradesAgreeAndAreThereAfterARestart) {
    const TemporaryFolder folder;
    const auto path = folder.File("journal");
    const Fields order = Order("amountOrQuantity=12345000");
    Answers orders, trades;
    {
        RunningServer running(path);
        running.Ask(order);
        EXPECT_EQ(Executed(running, 60), "");
        // What is placed during a listing is not in it; the days go on where they were free.
        Reply listing = running.Begin("qry_eq_sip_orders registrationNumber=" + kNumber);
        EXPECT_EQ(Executed(running, 40), "");
        EXPECT_EQ(running.Finish(std::move(listing)).size(), 61u);
        orders = Rows(running, "orders");
        trades = Rows(running, "trades");
    }
    ASSERT_EQ(orders.size(), 101u);
    orders.pop_back();
    trades.pop_back();
    std::map<std::string, std::size_t> fills, seen, days;
    for (const std::string& trade : trades) {
        ++fills[Field(trade, tag::orderNumber)];
        EXPECT_EQ(Field(trade, tag::registrationNumber) + Field(trade, tag::tradingSymbol),
                  kNumber + "ALPHA-EQ");
        EXPECT_GT(WholeNumber(Field(trade, tag::tradedPrice)).value_or(0), 0);
        EXPECT_TRUE(Field(trade, tag::fillDetailA).size() == 8
                    && ParseRecordDate(Field(trade, tag::fillDetailB)));
    }
    for (const std::string& row : orders) {
        const auto quantity = WholeNumber(Field(row, tag::quantity)).value();
        const auto traded = WholeNumber(Field(row, tag::tradedQuantity)).value();
        const std::string status = Field(row, tag::sipStatus), time = Field(row, tag::fillDetailA);
        EXPECT_EQ(traded != 0, fills.contains(Field(row, tag::orderNumber)));
        EXPECT_EQ(traded == quantity, status == kStatusComplete);
        EXPECT_EQ(traded == 0, status == kStatusRejected);
        EXPECT_EQ(Field(row, tag::userText).empty(), status == kStatusComplete);
        EXPECT_TRUE(Field(row, tag::fillDetailB).empty() == time.empty()
                    && Field(row, tag::tradedPrice).empty() == time.empty());
        for (const tag::Tag tag : {tag::loginId, tag::account, tag::side, tag::orderType, tag::orderSource})
            EXPECT_EQ(Field(row, tag), order.at(tag));
        ++seen[status + (traded == 0 ? "" : time.empty() ? ", pending" : ", told")];
        EXPECT_EQ(++days[Field(row, tag::placementTime).substr(0, 11)], 1u);
    }
    EXPECT_EQ(seen.size(), 5u);
    EXPECT_GT(seen["complete, pending"], 5u);

    // Neither an order without its trades nor trades without their order are left of a torn record, and the
    // same order is placed again.
    const std::string whole = FileText(path);
    const std::size_t lastFills = fills[Field(orders.back(), tag::orderNumber)];
    for (std::size_t length = whole.rfind('\n', whole.size() - 2) + 1; length < whole.size(); length += 61) {
        WriteJournal(path, whole.substr(0, length));
        RunningServer torn(path);
        EXPECT_EQ(Rows(torn, "orders").size(), orders.size());
        EXPECT_EQ(Rows(torn, "trades").size(), trades.size() - lastFills + 1);
        EXPECT_EQ(Executed(torn, 1), "");
        EXPECT_EQ(FileText(path), whole);
    }
    RunningServer again(path);
    Answers rows = Rows(again, "orders");
    rows.pop_back();
    EXPECT_EQ(rows, orders);
}

TEST(Execution, IsToldToWhoMaySeeTheRegistrationAndClosedWithoutAnyRow) {
    const TemporaryFolder folder;
    RunningServer running(folder.File("journal"));
    running.Ask(Order());
    const struct {
        const char* login;
        const char* firm;
        std::string number;
        const char* orders; // behind the name
        const char* trades;
    } rows[] = {
        {"USER1", "", kNumber, "errorCode=", "noRowText=no more data"},
        {"USER2", "BROKER", kNumber, "errorCode=", "noRowText=no more data"},
        {"USER2", "OTHER", kNumber, "errorCode=105 userText=The registration is another user's", nullptr},
        {"USER2", "", kNumber, "errorCode=105 userText=The registration is another user's", nullptr},
        {"USER1", "", "SIP", "errorCode=107 userText=There is no registration SIP", nullptr},
        {"USER1", "", "", "errorCode=101 userText=The registration number is missing", nullptr},
    };
    for (const auto& row : rows) {
        running.user = {row.login, row.firm, ""};
        for (const std::string name : {"qry_eq_sip_orders", "qry_eq_sip_trades"})
            EXPECT_EQ(running.Ask(name + " registrationNumber=" + row.number),
                      Answers{"echoedRequest=" + name + " "
                              + (row.trades && name.ends_with("trades") ? row.trades : row.orders)});
    }
}

} // namespace
} // namespace vesk

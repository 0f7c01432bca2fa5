// The registration book: what its queries send, where a record stands, and what each message changes.

#include "plugin/orderbook/BookLists.h"
#include "plugin/orderbook/BookRequests.h"
#include "tests/plugin/BookDouble.h"

#include <gtest/gtest.h>

#include <random>

namespace planfold::test {
namespace {

constexpr LocalDateTime kToday{2024, 3, 7, 12, 0, 0};

class OrderBookTest : public ::testing::Test, protected Stage {
protected:
    void Answer(const char* request, Fields fields) {
        fields.push_back({tag::echoedRequest, {request}});
        const Received received(fields);
        book.OnResponse(received.Message());
    }
    void Queried(Fields fields) {
        fields.push_back({tag::queriedRow, {"1"}});
        Answer("om_get_sip_orders", std::move(fields));
    }
    void Streamed(const Fields& fields) {
        const Received received(fields);
        book.OnBroadcast(received.Message());
    }
    std::string_view Text(OrderField field, std::string_view number = "SIP1") const {
        return book.Records()[book.Records().Find(number)].Text(field);
    }

    BookDouble view;
    OrderBook book{session, view, {&control, &control, &control}};
};

TEST_F(OrderBookTest, OpeningAsksForEverythingInOrderAndToldFailuresStopNothing) {
    session.m_nSipOperationMode = 1;
    book.Open(kToday);
    EXPECT_EQ(session.m_nSipOperationMode, 0);
    const Texts requests{"get_sip_operation_mode", "om_get_sip_orders loginId=DEALER1",
                         "qry_eq_sip startDate=3/7/2022 toDate=3/7/2024"};
    EXPECT_EQ(host.requests, requests);
    EXPECT_EQ(host.subscriptions,
              (Texts{"streamName=PLANFOLD registrationNumber=- peerIdA=-", "peerIdA=- registrationNumber=-"}));
    book.Refresh();
    EXPECT_EQ(host.LastRequest(), requests[1]);

    struct Row {
        FailQmxCall::Function function;
        int call;
        Texts boxes;
        std::size_t sent;
    };
    const char* building = "zup_add_parameter: Error while building message";
    const Row rows[] = {
        {FailQmxCall::startMsg, 1, {building}, 2},
        {FailQmxCall::startMsg, 2, {}, 2}, // the plain query says nothing of these two
        {FailQmxCall::addData, 1, {"Failed to add the request add_sip_orders"}, 2},
        {FailQmxCall::addData, 3, {"User not logged in"}, 2},
    };
    for (const Row& row : rows) {
        const FailQmxCall failing(row.function, row.call);
        host.requests.clear();
        view.boxes.clear();
        book.Open(kToday);
        EXPECT_EQ(view.boxes, row.boxes) << row.function << row.call;
        EXPECT_EQ(host.requests.size(), row.sent) << row.function << row.call;
    }
    view.boxes.clear();
    host.refuses = true;
    book.Open(kToday);
    const char* noStream = "Subscription  is failed ,error code : 42";
    EXPECT_EQ(view.boxes, (Texts{"Sending Request add_sip_orders Failed", noStream, "Request Failure", noStream,
                                 "Request Failure"}));
}

TEST_F(OrderBookTest, TheHistoryReachesBackByTheCountOfYears) {
    struct Row {
        LocalDateTime today;
        int days;
    };
    const Row rows[] = {
        {{2026, 11, 21}, 730},                        // no leap day on the way
        {{2024, 3, 1}, 731},   {{2024, 12, 31}, 731}, // 366 from a leap year's March on
        {{2024, 2, 29}, 730},  {{2024, 1, 1}, 730},
        {{2025, 3, 1}, 731},   {{2025, 2, 28}, 731}, // the second pass begins in the leap year
        {{2025, 1, 1}, 731},   {{2026, 3, 1}, 730},
        {{2026, 2, 10}, 731},  {{2026, 1, 1}, 731}, // ends in January or February of a leap year
        {{2100, 3, 1}, 730},   {{2000, 3, 1}, 731},
    };
    for (const Row& row : rows)
        EXPECT_EQ(LookBackDays(row.today, 2), row.days) << FormatPickerDate(row.today);
}

// Each step's lists from the top; what changes between them is the rule.
TEST_F(OrderBookTest, EveryRowStandsWhereTheRulesPutIt) {
    enum From { queried, streamed, history, queriedWithoutMark };
    struct Step {
        From from;
        const char* number; // null: none
        const char* status; // null: none
        const char* registered;
        const char* cancelled;
        const char* logged = nullptr;
    };
    const Step steps[] = {
        {queriedWithoutMark, "SIP1", "active", "", ""},
        {queried, nullptr, "active", "", ""},
        {queried, "", "active", "", ""},
        {streamed, nullptr, "canceled", "", ""},
        {queried, "SIP1", "active", "SIP1", ""},
        {queried, "SIP2", "canceled", "SIP1", "SIP2"},
        {queried, "SIP3", "Cancelled", "SIP3 SIP1", "SIP2"}, // any other word is registered
        {queried, "SIP4", nullptr, "SIP4 SIP3 SIP1", "SIP2"},
        {queried, "SIP3", "Paused", "SIP4 SIP3 SIP1", "SIP2"},
        // A query enters a cancelled record there and leaves its registered row.
        {queried, "SIP1", "cancelled", "SIP4 SIP3 SIP1", "SIP1 SIP2"},
        {queried, "SIP1", "cancelled", "SIP4 SIP3 SIP1", "SIP1 SIP2"},
        // A known record never enters the registered book, whatever it became.
        {queried, "SIP2", "active", "SIP4 SIP3 SIP1", "SIP1 SIP2"},
        {streamed, "SIP2", "active", "SIP4 SIP3 SIP1", "SIP1 SIP2"},
        // The stream takes the registered row away, and says so.
        {streamed, "SIP1", "cancelled", "SIP4 SIP3", "SIP1 SIP2", "SIP1 Order Cancelled "},
        {streamed, "SIP1", "canceled", "SIP4 SIP3", "SIP1 SIP2"},
        {streamed, "SIP3", "Cancelled", "SIP4 SIP3", "SIP1 SIP2"},
        {streamed, "SIP4", "canceled", "SIP3", "SIP4 SIP1 SIP2", "SIP4 Order Cancelled "},
        {streamed, "SIP5", "cancelled", "SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {streamed, "SIP6", "active", "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        // History brings cancelled records that nobody has told of yet.
        {history, "SIP7", "active", "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {history, "SIP7", "Cancelled", "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {history, "SIP7", nullptr, "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {history, nullptr, "canceled", "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {history, "SIP3", "canceled", "SIP6 SIP3", "SIP5 SIP4 SIP1 SIP2"},
        {history, "SIP7", "canceled", "SIP6 SIP3", "SIP7 SIP5 SIP4 SIP1 SIP2"},
    };
    for (const Step& step : steps) {
        Fields fields{{tag::peerIdA, {"any"}}};
        if (step.number) fields.push_back({tag::registrationNumber, {step.number}});
        if (step.status) fields.push_back({tag::sipStatus, {step.status}});
        host.log.clear();
        if (step.from == queried) Queried(fields);
        if (step.from == streamed) Streamed(fields);
        if (step.from == history) Answer("qry_eq_sip", fields);
        if (step.from == queriedWithoutMark) Answer("om_get_sip_orders", fields);
        const auto line = &step - steps;
        EXPECT_EQ(Numbers(book, view.registered), step.registered) << line;
        EXPECT_EQ(Numbers(book, view.cancelled), step.cancelled) << line;
        EXPECT_EQ(host.log, step.logged ? Texts{step.logged} : Texts{}) << line;
        if (step.from == streamed && step.number) {
            EXPECT_EQ(view.changed.empty() ? "" : view.changed.back(), step.number)
                << "told to whoever else shows it";
        }
    }
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_EQ(Text(OrderField::sipStatus, "SIP3"), "Cancelled") << "history left the known record alone";

    book.Open(kToday); // a new window begins empty: the earlier records could not enter its registered book
    Queried("registrationNumber=SIP3");
    EXPECT_EQ(Numbers(book, view.registered) + "|" + Numbers(book, view.cancelled), "SIP3|");
}

TEST_F(OrderBookTest, AMessageFillsItsFieldsAndLeavesTheOthers) {
    struct Row {
        Fields fields;
        bool installments;
        OrderField field;
        const char* text;
    };
    using enum OrderField;
    const Row rows[] = {
        {"loginId=DEALER1", false, loginId, "DEALER1"},
        {"exchange=nse_cm", false, exchange, "NSE"},
        {"exchange=NSE_CM", false, exchange, "NSE"}, // in no row: as it was
        {"side=S", false, side, "SWP"},
        {"side=SWP", false, side, "SWP"},
        {"orderType=L", false, orderType, ""}, // the book names market orders only
        {"orderType=MKT", false, orderType, "MARKET"},
        {"orderType=L", false, orderType, "MARKET"},
        {"amountOrQuantity=12345", false, amount, ""}, // neither value nor quantity so far
        {"amountOrQuantity=12345 investType=value", false, amount, "123.45"},
        {"amountOrQuantity=900719925474099", false, amount, "9007199254740.99"},
        {"amountOrQuantity=7", false, amount, "0.07"},
        {"amountOrQuantity=12 investType=qty", false, quantity, "12"},
        {"amountOrQuantity=13", false, amount, "0.07"},
        {"amountOrQuantity=14 investType=Qty", false, quantity, "13"},
        {"totalPeriod=12", false, totalPeriod, "12"},
        {"totalPeriod=24", true, installmentsRegistered, "24"},
        {"totalPeriod=25", true, totalPeriod, "12"},
        {"account=C001", false, accountName, "First Client"},
        {"userText=r", false, accountName, "First Client"},
        {"account=C9", false, accountName, ""}, // the host knows no such client
        {"sipStatus=", false, sipStatus, ""},   // an empty value is one
        {{{tag::userText, {"%s%n"}}}, false, userText, "%s%n"},
    };
    Queried("registrationNumber=SIP1 sipStatus=active");
    for (const Row& row : rows) {
        session.m_nSipOperationMode = row.installments;
        Fields fields = row.fields;
        fields.push_back({tag::registrationNumber, {"SIP1"}});
        Queried(fields);
        EXPECT_EQ(Text(row.field), row.text) << &row - rows;
    }
    session.host.pu_get_client_name = nullptr;
    Queried("registrationNumber=SIP1 account=C001");
    EXPECT_EQ(Text(account), "C001");
    EXPECT_EQ(Text(accountName), "") << "without the callback nothing else is missing";
    EXPECT_EQ(book.Records().Size(), 1u);
}

TEST_F(OrderBookTest, HistoryIsFilteredByTheIdentityOfTheLoginMode) {
    struct Row {
        int mode;
        Fields fields;
        bool passes;
    };
    const Row rows[] = {
        {0, "peerIdA=", true},         {0, "peerIdB=BRANCH", false},  {1, "peerIdA=BROKER", true},
        {1, "peerIdA=broker", false},  {1, "peerIdB=BROKER", false},  {2, "peerIdB=BRANCH", true},
        {2, "peerIdA=BRANCH", false},  {3, "loginId=DEALER1", true},  {4, "loginId=DEALER2", false},
        {-1, "loginId=DEALER1", true}, {9, "peerIdA=DEALER1", false},
    };
    for (const Row& row : rows) {
        session.m_nLoginMode = row.mode;
        Fields fields = row.fields;
        fields.push_back({tag::registrationNumber, {"SIP" + std::to_string(&row - rows)}});
        fields.push_back({tag::sipStatus, {"cancelled"}});
        const std::size_t before = view.cancelled.rows.size();
        Answer("qry_eq_sip", fields);
        EXPECT_EQ(view.cancelled.rows.size() - before, row.passes) << &row - rows;
    }
}

TEST_F(OrderBookTest, ErrorsGoToTheLogAndChangeNoRow) {
    for (const char* request : {"om_get_sip_orders", "qry_eq_sip", "get_sip_operation_mode", "other"}) {
        host.log.clear();
        session.m_nSipOperationMode = 1;
        Answer(request, "errorCode=17 registrationNumber=SIP1 sipStatus=cancelled peerIdA=x queriedRow=1");
        EXPECT_EQ(host.log, Texts{std::string("Error in response : ") + request + " . Error Code : 17"});
        EXPECT_EQ(session.m_nSipOperationMode, request == std::string_view("get_sip_operation_mode") ? 0 : 1);
    }
    EXPECT_EQ(book.Records().Size(), 0u);
    Answer("get_sip_operation_mode", "frequency=monthly minimumPeriods=6");
    EXPECT_EQ(session.m_nSipOperationMode, 1);
    Answer("get_sip_operation_mode", "frequency=0");
    EXPECT_EQ(session.m_nSipOperationMode, 0);
    EXPECT_EQ(session.m_dMinSipMonthly, 0) << "the minimums are the order windows' affair";
}

TEST_F(OrderBookTest, AfterTheEndNothingIsTouched) {
    Queried("registrationNumber=SIP1");
    host.duringLog = [&] { session.End(); };
    Answer("add_sip_orders", "errorCode=17 userText=refused");
    EXPECT_EQ(view.boxes, Texts{}) << "the host exited while the error was logged";
    view.open = false;
    Queried("registrationNumber=SIP2");
    view.open = true;
    Streamed("registrationNumber=SIP3");
    EXPECT_EQ(book.Records().Size(), 1u);
}

TEST_F(OrderBookTest, TheMenuFollowsTheStatusOfTheFirstSelectedRow) {
    struct Row {
        const char* status; // null: no row
        const char* entries;
    };
    const Row rows[] = {
        {nullptr, "Refresh|Cancel\tDel|Order History"},
        {"active", "Refresh|Cancel\tDel|Modify|Pause|~Resume|Order History"},
        {"Paused", "Refresh|Cancel\tDel|Modify|~Pause|Resume|Order History"},
        {"paused", "Refresh|Cancel\tDel|Modify|Pause|~Resume|Order History"},
        {"canceled", "Refresh|Cancel\tDel|Modify|Pause|~Resume|Order History"},
        {"cancelled", "Refresh|Cancel\tDel|Order History"},
        {"expired", "Refresh|Cancel\tDel|Order History"},
    };
    for (const Row& row : rows) {
        sOrderinfo record;
        OrderChanges status;
        status[OrderField::sipStatus] = row.status ? row.status : "";
        record.Apply(status);
        std::string entries;
        for (const MenuEntry& entry : RegisteredMenu(row.status ? &record : nullptr))
            entries += std::string(entries.empty() ? "" : "|") + (entry.greyed ? "~" : "") + entry.text;
        EXPECT_EQ(entries, row.entries);
    }
}

// Any texts of any length, changed together and any number of times, leave the record's others alone.
TEST(OrderCacheTest, RecordsKeepTheirTexts) {
    std::mt19937 random(4711);
    OrderCache cache;
    ASSERT_EQ(cache.Add("SIP0"), 0u);
    std::array<std::string, kOrderFieldCount> expected;
    expected[static_cast<std::size_t>(OrderField::registrationNumber)] = "SIP0";
    for (int step = 0; step < 5000; ++step) {
        OrderChanges changes;
        for (std::size_t field = 0; field < kOrderFieldCount; ++field) {
            if (random() % 4 || field == static_cast<std::size_t>(OrderField::registrationNumber)) continue;
            expected[field].assign(random() % 40, static_cast<char>('a' + random() % 26));
            changes[static_cast<OrderField>(field)] = expected[field];
        }
        cache[0].Apply(changes);
        for (std::size_t each = 0; each < kOrderFieldCount; ++each)
            ASSERT_EQ(cache[0].Text(static_cast<OrderField>(each)), expected[each]);
    }
}

} // namespace
} // namespace planfold::test

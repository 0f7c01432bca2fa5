// The form, the registration book, its history, the connection library and the trading server together, with
// other sessions beside.

#include "plugin/base/Numbers.h"
#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/BookDouble.h"
#include "tests/plugin/FlowStage.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class BookFlowTest : public ::testing::Test, public FlowStage {
protected:
    void SetUp() override { line.part = &book; }
    void Open() {
        book.Open(kNow);
        Pump();
    }
    void Select(const std::string& number) { view.registered.selected = {book.Records().Find(number)}; }
    std::string Lists() const { return Numbers(book, view.registered) + "|" + Numbers(book, view.cancelled); }
    std::string_view Text(OrderField field, const std::string& number) const {
        return book.Records()[book.Records().Find(number)].Text(field);
    }

    BookDouble view;
    Line<OrderBook> line;
    OrderBook book{session,
                   view,
                   {rxClient.Get(kRxRequests, &line), rxClient.Get(kRxIdentityStream, &line),
                    rxClient.Get(kRxAccountStream, &line)}};
    const vesk::UserIdentity colleague{"DEALER2", "BROKER", "BRANCH"}, stranger{"DEALER9", "ELSEWHERE", "FAR"};
};

TEST_F(BookFlowTest, WhatHappensInAnySessionReachesTheOpenBook) {
    session.m_nLoginMode = 1;
    const std::string before = Place(own, "account=C001");
    Open();
    EXPECT_EQ(Lists(), before + "|");
    EXPECT_EQ(session.m_nSipOperationMode, 1);
    const std::string after = Place(own, "account=C002");
    const std::string theirs = Place(colleague, "account=C001");
    Place(stranger, "account=C003");
    Pump();
    EXPECT_EQ(Lists(), theirs + " " + after + " " + before + "|");
    const std::pair<OrderField, const char*> cells[] = {
        {OrderField::exchange, "NSE"},
        {OrderField::side, "SIP"},
        {OrderField::amount, "1234.50"},
        {OrderField::startDate, "15-Jan-2027"},
        {OrderField::installmentsRegistered, "12"},
        {OrderField::nextExecutionDate, "15-Jan-2027"},
        {OrderField::accountName, "Second Client"},
        {OrderField::sipStatus, "active"},
    };
    for (const auto& [field, text] : cells)
        EXPECT_EQ(Text(field, after), text);

    Send(own, "requestName=pause_sip_order registrationNumber=" + before);
    Pump();
    EXPECT_EQ(Text(OrderField::sipStatus, before), "Paused");
    Send(own, "requestName=modify_sip_order registrationNumber=" + before
                  + " amountOrQuantity=50000 totalPeriod=24");
    Pump();
    EXPECT_EQ(Text(OrderField::amount, before), "500.00");
    EXPECT_EQ(Text(OrderField::installmentsRegistered, before), "24");
    Send(own, "requestName=cancel_sip_order registrationNumber=" + after + " echoedNumber=" + after
                  + " userText=gone cancelledBy=DEALER1");
    Pump();
    EXPECT_EQ(Lists(), theirs + " " + before + "|" + after);
    EXPECT_EQ(Text(OrderField::userText, after), "gone");
    EXPECT_EQ(Text(OrderField::cancelledBy, after), "DEALER1");
    EXPECT_EQ(Text(OrderField::cancelledDate, after), "10-Jan-2027");
    EXPECT_EQ(host.log.back(), after + " Order Cancelled ");
    EXPECT_EQ(view.boxes, Texts{}) << "a stream opens no box";
    book.Refresh();
    Pump();
    EXPECT_EQ(Lists(), theirs + " " + before + "|" + after) << "asking again adds nothing twice";
}

TEST_F(BookFlowTest, TheDealersOwnActionsComeBackByAnswerAndStream) {
    session.m_nLoginMode = 1;
    const std::string first = Place(own, "account=C001");
    const std::string second = Place(own, "account=C002");
    Open();
    view.reason = "wish";
    Select(first);
    book.Actions().Cancel();
    Pump();
    EXPECT_EQ(Lists(), second + "|" + first);
    EXPECT_EQ(view.boxes, Texts{first + " Order Cancelled "});
    EXPECT_EQ(host.log, (Texts{"Sending request to cancel " + first, first + " Order Cancelled "}));
    EXPECT_EQ(Text(OrderField::userText, first), "wish");

    Select(second);
    server.Config().faults["cancel_sip_order"] = {.errorCode = {}, .silent = true};
    host.uuid = "another";
    book.Actions().Cancel();
    Pump();
    EXPECT_EQ(Lists(), "|" + second + " " + first) << "the stream tells what the answer did not";
}

TEST_F(BookFlowTest, EveryLoginModeHearsWhatItsSubscriptionAndHistoryGive) {
    host.accounts = {"C001", "C002"};
    struct Row {
        int mode;
        int overview;
        const char* heard; // of own, colleague's and stranger's orders: never of another firm
        const char* history;
    };
    const Row rows[] = {
        {0, 0, "own ", "own colleague "},
        {1, 0, "own colleague ", "own colleague "},
        {2, 0, "own colleague ", "own colleague "},
        {3, 1, "own colleague ", "own "},
        {3, 0, "own ", "own "},
        {4, 1, "own colleague ", "own "},
        {4, 0, "own ", "own "},
        {7, 1, "own ", "own "},
    };
    const std::pair<const char*, vesk::UserIdentity> users[] = {
        {"own ", own}, {"colleague ", colleague}, {"stranger ", stranger}};
    for (const Row& row : rows) {
        // Cancelled ones come by the history, new ones by the stream.
        std::vector<std::string> cancelled;
        for (const auto& [name, user] : users) {
            cancelled.push_back(Place(user, "account=C001"));
            Send(user, "requestName=cancel_sip_order registrationNumber=" + cancelled.back() + " echoedNumber="
                           + cancelled.back() + " orderId=" + cancelled.back() + " userText=x");
        }
        session.m_nLoginMode = row.mode;
        host.clientOverview = row.overview;
        BookDouble seen;
        Line<OrderBook> its;
        RxControl* controls[] = {rxClient.Get(kRxRequests, &its), rxClient.Get(kRxIdentityStream, &its),
                                 rxClient.Get(kRxAccountStream, &its)};
        OrderBook fresh(session, seen, {controls[0], controls[1], controls[2]});
        its.part = &fresh;
        fresh.Open(kNow);
        Pump();
        std::string heard, history;
        for (std::size_t i = 0; i < std::size(users); ++i) {
            if (fresh.Records().Find(cancelled[i]) != kNoRecord) history += users[i].first;
            const std::string number = Place(users[i].second, "account=C002");
            Pump();
            if (fresh.Records().Find(number) != kNoRecord) heard += users[i].first;
        }
        EXPECT_EQ(heard, row.heard) << row.mode << " " << row.overview;
        EXPECT_EQ(history, row.history) << row.mode << " " << row.overview;
        for (RxControl* one : controls)
            rxClient.Destroy(one);
    }
}

TEST_F(BookFlowTest, AnOrderIsRegisteredJournalledAnsweredAndStreamed) {
    OrderEntryDouble form;
    Line<OrderEntry> its;
    OrderEntry entry(session, form, rxClient.Get(kRxRequests, &its));
    its.part = &entry;
    form.controls[IDC_SERIES].items = {"EQ"};
    form.controls[IDC_SYMBOL].items = {"ALPHA"};
    Open();
    entry.Initialise(kNow, {});
    Pump();
    EXPECT_EQ(form.controls[IDC_FREQUENCY].items.size(), server.Config().frequencies.size());
    for (const auto& [edit, text] :
         {std::pair(IDC_CLIENT_SEARCH, "C001"), {IDC_VALUE, "1234.50"}, {IDC_PERIOD, "12"}})
        form.SetText(edit, text);
    form.SelectText(IDC_FREQUENCY, "monthly");
    entry.Submit(kNow);
    EXPECT_TRUE(form.boxes.empty()) << "answers never come from inside the sending";
    Pump();
    ASSERT_EQ(server.Held().All().size(), 1u);
    const std::string number(server.Held().All()[0].Number());
    ASSERT_EQ(form.boxes.size(), 1u);
    EXPECT_NE(form.boxes[0].find(number), std::string::npos) << form.boxes[0];
    EXPECT_EQ(Lists(), number + "|");
    const std::string journal = vesk::FileText(folder.File("journal"));
    EXPECT_TRUE(journal.find(number) != journal.npos && journal.find("123450") != journal.npos) << journal;
    EXPECT_EQ(host.log.size(), 1u);
}

TEST_F(BookFlowTest, TheHistorysOrdersAndTheirTradesComeAsTheServerHasThem) {
    HistoryDouble seen;
    Line<OrderHistory> its;
    OrderHistory history(session, seen, rxClient.Get(kRxRequests, &its));
    its.part = &history;
    const std::string number = Place(own, "frequency=daily investType=qty amountOrQuantity=90");
    history.Open(kPass, number);
    Pump();
    EXPECT_EQ(seen.listings, 1);
    EXPECT_FALSE(seen.shown);
    EXPECT_EQ(std::exchange(seen.boxes, {}), Texts{"No orders yet: " + number});

    const vesk::Registration& registration = *server.Held().Find(number);
    ASSERT_EQ(server.Clock().Execute(registration, {server.Clock().OpenDays(registration, 60), 12'345, 7}), "");
    history.Open(kPass, number);
    history.Open(kPass, "SIP-unknown"); // refused, and in nobody's way
    history.Open(kPass, number);
    Pump();
    EXPECT_TRUE(seen.shown);
    EXPECT_EQ(seen.boxes, Texts{});
    ASSERT_EQ(history.Records().size(), 60u);
    std::size_t pending = 0, traded = 0, untraded = 0;
    for (const sOrderHistory& order : history.Records()) {
        const auto text = [&](HistoryField field) { return order[field]; };
        EXPECT_EQ(text(HistoryField::registrationNumber) + text(HistoryField::account)
                      + text(HistoryField::exchange) + text(HistoryField::side) + text(HistoryField::orderType),
                  number + "C001NSESIPMARKET");
        EXPECT_NEAR(LeadingReal(text(HistoryField::price)), 123.45, 3);
        const bool hasTraded = text(HistoryField::tradedQuantity) != "0";
        ++(hasTraded ? traded : untraded);
        pending += order.fillPending;
        // Told by the order, or by its trades.
        EXPECT_EQ(!text(HistoryField::tradedPrice).empty(), hasTraded);
        EXPECT_EQ(!text(HistoryField::fillDetailA).empty(), hasTraded);
    }
    EXPECT_TRUE(pending > 0 && pending < traded && untraded > 0) << pending << " " << traded << " " << untraded;
    EXPECT_EQ(host.log.size(), 1u) << "the refusal";
}

} // namespace
} // namespace planfold::test

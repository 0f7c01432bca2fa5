// Orders of which no answer tells: how long they wait, what the book tells of them, and what the dealer is
// told.
#include "tests/plugin/BasketStage.h"

#include "plugin/doubts/Doubts.h"
#include "plugin/orderentry/DuplicateGuard.h"

namespace planfold::test {
namespace {

struct DoubtsDouble final : DoubtsView {
    void ShowMessage(Pass, std::string_view text) override { texts.emplace_back(text); }
    bool MayAsk() override { return true; }
    Choice Choose(Pass, std::string_view question) override {
        texts.emplace_back(question);
        return choice;
    }
    bool Ask(Pass, std::string_view question) override {
        texts.emplace_back(question);
        return std::exchange(yes, true);
    }
    void ShowOrdersOfDay(Pass) override { ++shownDays; }
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders) override {
        return takeBack(pass, orders);
    }
    Texts texts;
    Choice choice = Choice::yes;
    bool yes = true; // to the next question
    int shownDays = 0;
    std::function<std::size_t(Pass, std::span<const OrderPlace>)> takeBack;
};

class DoubtsTest : public BasketStage {
protected:
    // A basket of one row for each client, placed under identifiers of their own.
    void Place(const std::string& clients) {
        session.host.pu_get_uuid = [](OutString identifier) {
            static int given = 0;
            *identifier = "ID" + std::to_string(++given);
            return 1;
        };
        std::string lines;
        for (const char client : clients)
            lines += Line(std::string("C") + client);
        Load(lines);
        basket.Runs().Place();
        Run();
        Sent();
    }
    std::string States(const Basket& of) const {
        std::string text;
        for (const RecordId record : view.list.rows)
            text.append(of.Outcome().StateText(record)).push_back('|');
        return text;
    }
    std::string IdOf(OrderPlace place) {
        return std::string(session.record.Ledger()[place].Text(RecordField::orderId));
    }
    void Later(int seconds) { host.recordTime.second += seconds; }
    void Tick(Doubts& doubts, int seconds) {
        Later(seconds);
        doubts.OnPick();
        doubts.OnTime();
    }
    // The book's answer: the orders at these places under their numbers, and its end.
    void Book(Doubts& doubts, std::initializer_list<OrderPlace> places) {
        for (const OrderPlace place : places)
            doubts.OnResponse(Received("echoedRequest=om_get_sip_orders queriedRow=1 sipStatus=active orderId="
                                       + IdOf(place) + " registrationNumber=SIP" + std::to_string(place))
                                  .Message());
        doubts.OnResponse(Received("echoedRequest=om_get_sip_orders").Message());
    }
    DoubtsDouble told;
};

TEST_F(DoubtsTest, WhatIsNotAnsweredIsInDoubtAndProvenAbsentOnlyByTwoLateAnswers) {
    Open();
    Place("12");
    Later(29);
    session.record.OnTime();
    EXPECT_EQ(States(basket), "Sent|Sent|");
    Answer("echoedRequest=add_sip_orders echoedNumber=2 userText=ok registrationNumber=SIP9");
    Later(1);
    session.record.OnTime();
    EXPECT_EQ(States(basket), "Registered SIP9|In doubt: sent at 15:30, no answer|");
    EXPECT_EQ(basket.Outcome().Status()[3], "Sent 2: 1 registered, 0 refused, 1 in doubt");

    // A late answer ends the doubt.
    Answer("echoedRequest=add_sip_orders echoedNumber=1 errorCode=7 userText=no");
    EXPECT_EQ(States(basket), "Registered SIP9|Refused: no (code 7).|");
    ASSERT_EQ(basket.Outcome().Results().size(), 1u);

    // Of an answer before the time, a single one and a broken one nothing follows.
    host.recordTime.second = 0;
    Place("345");
    Doubts doubts(session, told, [this] { return &control; });
    told.takeBack = [&](Pass pass, std::span<const OrderPlace> orders) {
        return basket.Coming().TakeBack(pass, orders);
    };
    doubts.Compare();
    EXPECT_EQ(Taken(told.texts), Texts{"No order of yours is in doubt."});
    session.record.OnSessionEnd();
    Tick(doubts, 20);
    doubts.Compare();
    Tick(doubts, 5);
    EXPECT_EQ(host.requests, Texts{}) << "an order may still be on its way";
    Tick(doubts, 5);
    EXPECT_EQ(host.requests, Texts{"om_get_sip_orders loginId=DEALER1"});
    Book(doubts, {2});
    EXPECT_EQ(session.record.Ledger().Count(OrderState::inDoubt), 2u) << "found at once, but not absent";
    doubts.OnResponse(Received("echoedRequest=om_get_sip_orders errorCode=1").Message());
    Tick(doubts, 1);
    EXPECT_EQ(Taken(told.texts), Texts{"Compared with the book: 1 found, 0 not there, 2 still in doubt.\n"
                                       "The server refused to list the registrations."});
    doubts.Compare();
    Tick(doubts, 1);
    Book(doubts, {});
    Tick(doubts, 1);
    Book(doubts, {3});
    const std::string take =
        " found, 1 not there, 0 still in doubt.\n\nTake 1 order that the book does not have "
        "into the basket, to be placed again?";
    told.yes = false;
    Tick(doubts, 1);
    EXPECT_EQ(Taken(told.texts), Texts{"Compared with the book: 1" + take});
    // What was not taken is offered again.
    doubts.Compare();
    Tick(doubts, 1);
    EXPECT_EQ(Taken(told.texts), Texts{"Compared with the book: 0" + take});
    EXPECT_EQ(States(basket), "Registered SIP2|Registered SIP3|Not in the book|");

    // It is the same order when it is placed again, and told when it turns up twice.
    host.requests.clear();
    basket.Runs().Place(BasketRuns::Placed::unsent);
    Run();
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_NE(host.requests[0].find(" orderId=" + IdOf(4) + " "), std::string::npos) << host.requests[0];
    session.record.OnRow({.orderId = IdOf(4), .registration = "SIP4"});
    for (int row = 0; row < 2; ++row)
        session.record.OnRow({.orderId = IdOf(4), .registration = "SIP5"});
    Tick(doubts, 1);
    Tick(doubts, 1);
    EXPECT_EQ(Taken(told.texts),
              Texts{"Registered twice: SIP4 and SIP5, for C3 ARBORTEX-EQ monthly.\n\nCancel SIP5?"});
    EXPECT_TRUE(host.requests.back().starts_with("cancel_sip_order registrationNumber=SIP5 "));
    doubts.OnResponse(Received("echoedRequest=cancel_sip_order echoedNumber=SIP5 errorCode=9").Message());
    EXPECT_EQ(Taken(told.texts), Texts{"SIP5 is not cancelled. Refused: (code 9)."});
    EXPECT_EQ(session.record.Ledger().Orders().back().State(), OrderState::refused);
}

TEST_F(DoubtsTest, AChangeIsDoneWhenTheBookShowsIt) {
    Open();
    const struct {
        std::string_view request;
        const char* status;
        OrderState state;
    } rows[] = {
        {kCancelSipOrder, "cancelled", OrderState::done}, {kCancelSipOrder, "active", OrderState::absent},
        {kPauseSipOrder, "Paused", OrderState::done},     {kPauseSipOrder, "active", OrderState::absent},
        {kResumeSipOrder, "active", OrderState::done},    {kResumeSipOrder, "Paused", OrderState::absent},
        {kResumeSipOrder, "expired", OrderState::absent},
    };
    std::vector<RecordedOrder> changes;
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const std::string number = "SIP" + std::to_string(i);
        RecordTexts texts;
        texts[RecordField::loginId] = session.identity.loginId;
        texts[RecordField::registration] = number;
        texts[RecordField::text] = rows[i].request;
        changes.emplace_back(texts);
    }
    const auto places = session.record.Sending(changes);
    session.record.OnSessionEnd();
    Doubts doubts(session, told, [this] { return &control; });
    doubts.Compare();
    Tick(doubts, 30);
    for (int time = 0; time < 2; ++time) {
        for (std::size_t i = 0; i < std::size(rows); ++i)
            doubts.OnResponse(Received("echoedRequest=om_get_sip_orders queriedRow=1 registrationNumber=SIP"
                                       + std::to_string(i) + " sipStatus=" + rows[i].status)
                                  .Message());
        Book(doubts, {});
        Tick(doubts, 1);
    }
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(session.record.Ledger()[(*places)[i]].State(), rows[i].state)
            << rows[i].request << rows[i].status;
}

TEST_F(DoubtsTest, TenChangesThatWereNotDoneAreNamed) {
    std::vector<RecordedOrder> changes;
    for (int i = 0; i < 11; ++i) {
        const std::string number = "SIP" + std::to_string(i);
        RecordTexts texts;
        texts[RecordField::loginId] = session.identity.loginId;
        texts[RecordField::registration] = number;
        texts[RecordField::text] = kPauseSipOrder;
        changes.emplace_back(texts);
    }
    session.record.Sending(changes);
    session.record.OnSessionEnd();
    Doubts doubts(session, told, [this] { return &control; });
    doubts.Compare();
    Tick(doubts, 30);
    for (int time = 0; time < 2; ++time) {
        for (int i = 0; i < 11; ++i)
            doubts.OnResponse(
                Received("echoedRequest=om_get_sip_orders queriedRow=1 sipStatus=active registrationNumber=SIP"
                         + std::to_string(i))
                    .Message());
        Book(doubts, {});
        Tick(doubts, 1);
    }
    ASSERT_FALSE(told.texts.empty());
    EXPECT_EQ(std::ranges::count(told.texts.back(), '\n'), 11) << told.texts.back();
    EXPECT_TRUE(told.texts.back().ends_with(" SIP9\n... and 1 more change")) << told.texts.back();
}

// The host gives no identifiers; what was absent comes late, after it was placed again.
TEST_F(DoubtsTest, OrdersRegisteredTwiceAreToldTogetherAndToldAgainUntilTheyAreCancelled) {
    Open();
    session.host.pu_get_uuid = nullptr;
    std::string lines;
    for (char client = 'a'; client < 'm'; ++client)
        lines += Line(std::string("C") + client);
    Load(lines);
    std::vector<RecordedOrder> orders;
    StartDates dates;
    for (const RecordId row : view.list.rows)
        orders.emplace_back(AskedForBy(basket.Rows()[row].Texts(), dates));
    for (int again = 0; again < 2; ++again) {
        const auto places = session.record.Sending(orders);
        for (const OrderPlace place : *places)
            if (!again)
                session.record.Tell(place, OrderEvent::inDoubt, ""),
                    session.record.Tell(place, OrderEvent::absent, "");
    }
    for (OrderPlace place = 0; place < 24; ++place)
        session.record.Tell(place, OrderEvent::registered, "", "S" + std::to_string(place));
    const auto ask = [&] { // in a session of its own, after a crash
        OrderRecord next(host.recordFiles, [this] { return host.recordTime; });
        Session another(host.Lookup(), host.IdentityStrings(), host.strings, next);
        another.OpenHandles(kPass, told);
        Doubts doubts(another, told, [this] { return &control; });
        for (int second = 0; second < 3; ++second)
            Tick(doubts, 1);
        for (const char* answer : {"12 userText=ok", "13 errorCode=9"})
            doubts.OnResponse(
                Received("echoedRequest=cancel_sip_order echoedNumber=S" + std::string(answer)).Message());
        for (int number = 14; number < 24; ++number)
            doubts.OnResponse(
                Received("echoedRequest=cancel_sip_order userText=ok echoedNumber=S" + std::to_string(number))
                    .Message());
        return Taken(told.texts);
    };
    host.requests.clear();
    const Texts texts = ask();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_TRUE(texts[0].starts_with("Registered twice: S0 and S12, for Cl ARBORTEX-EQ monthly.\n"))
        << texts[0];
    EXPECT_TRUE(texts[0].ends_with(".\n... and 2 more\n\nCancel the later one of each, 12 in all?"))
        << texts[0];
    EXPECT_EQ(host.requests.size(), 12u);
    EXPECT_EQ(texts[1], "11 orders are cancelled.\nS13 is not cancelled. Refused: (code 9).");
    EXPECT_EQ(ask(), (Texts{"Registered twice: S1 and S13, for Ck ARBORTEX-EQ monthly.\n\nCancel S13?",
                            "S13 is not cancelled. Refused: (code 9)."}));
}

TEST_F(DoubtsTest, TheNextSessionIsToldOnceAndKnowsTheFileAgain) {
    Open();
    view.files["b300.csv"] = Line("C1") + Line("C2") + Line("C3");
    Place("123");
    Answer("echoedRequest=add_sip_orders echoedNumber=1 userText=ok registrationNumber=SIP9");
    // A crash: nothing more is written. The day after, and with what another terminal adds meanwhile.
    OrderRecord next(host.recordFiles, [this] { return host.recordTime; });
    Session another([](const char*) { return nullptr; }, {host.loginId, host.peerA, host.peerB, host.active},
                    host.strings, next);
    Doubts doubts(another, told, [this] { return &control; });
    told.choice = Choice::no;
    Tick(doubts, 10);
    EXPECT_EQ(told.texts, Texts{}) << "the other terminal may still get its answer";
    Answer("echoedRequest=add_sip_orders echoedNumber=2 userText=ok registrationNumber=SIP8");
    Tick(doubts, 19);
    Tick(doubts, 1);
    Tick(doubts, 1);
    ASSERT_EQ(told.texts.size(), 1u);
    EXPECT_EQ(told.shownDays, 1);
    EXPECT_TRUE(told.texts[0].starts_with("1 order of basket.csv, sent at 15:30, has no answer.\n"))
        << told.texts[0];
    EXPECT_EQ(next.Ledger().Count(OrderState::done), 2u);

    // By what it is where the server tells no identifier, and never one that was registered before it was sent.
    RecordTexts asked = next.Ledger()[0].Texts();
    asked[RecordField::registration] = {};
    for (const auto& [row, state] :
         {std::pair(BookRow{.registration = "SIP8", .asked = asked, .enteredOn = "2027-01-31"},
                    OrderState::inDoubt),
          {{.registration = "SIP1", .asked = asked, .enteredOn = "2027-01-30"}, OrderState::inDoubt},
          {{.registration = "SIP7", .asked = asked, .enteredOn = "2027-01-31"}, OrderState::done}}) {
        BookRow other = row;
        if (row.registration == "SIP8") other.asked[RecordField::account] = "C2";
        next.OnRow(other);
        EXPECT_EQ(next.Ledger()[0].State(), state) << row.registration;
    }
}

TEST_F(DoubtsTest, OrdersLikeOthersAreAskedAboutUnlessTheHostKeepsNoRecord) {
    Open();
    Place("1");
    struct Book final : LiveRegistrations {
        void EachLive(const std::function<void(const BookRow&)>& each) const override { each(row); }
        BookRow row{.registration = "SIP6"};
    } book;
    StartDates dates;
    Load(Line("C1") + Line("C2") + Line("C3") + Line("C3"));
    book.row.asked = AskedForBy(basket.Rows()[view.list.rows[2]].Texts(), dates);
    session.book = &book;
    view.choice = Choice::no;
    Taken(view.questions);
    basket.Runs().Place(BasketRuns::Placed::unsent);
    EXPECT_EQ(view.questions[0], "1 like a registration in the book: C2 ARBORTEX-EQ monthly, SIP6\n"
                                 "1 like another of these orders: C3 ARBORTEX-EQ monthly\n\nYes: place all 3.\n"
                                 "No: place only the other 1.\nCancel: place none.");
    EXPECT_EQ(Sent(), "C3");
    // What was refused may have been registered by another way since.
    Answer("echoedRequest=add_sip_orders echoedNumber=4 errorCode=7");
    book.row.asked = AskedForBy(basket.Rows()[view.list.rows[0]].Texts(), dates);
    basket.Runs().Place(BasketRuns::Placed::refused);
    EXPECT_EQ(Sent(), "");
    host.recordFiles.hasFolder = false;
    DuplicateGuard guard(session);
    EXPECT_FALSE(guard.IsLike(AskedForBy(basket.Rows()[view.list.rows[3]].Texts(), dates)));
    session.book = nullptr;
}

TEST_F(DoubtsTest, TheFirstOrdersLikeOthersAreNamed) {
    for (const int like : {5, 6}) {
        DuplicateGuard guard(session);
        RecordTexts order;
        order[RecordField::account] = "C1";
        for (int i = 0; i <= like; ++i)
            guard.IsLike(order);
        const std::string text = guard.Text();
        EXPECT_EQ(std::ranges::count(text, ';'), 4) << text;
        EXPECT_EQ(text.ends_with(" and 1 more\n"), like == 6) << text;
    }
}

} // namespace
} // namespace planfold::test

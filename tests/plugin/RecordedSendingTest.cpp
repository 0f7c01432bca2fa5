// Every request that places or changes a registration is on the disk before it goes out, and what becomes of it
// after it.
#include "tests/plugin/BasketStage.h"
#include "tests/plugin/BookDouble.h"
#include "tests/plugin/OrderEntryStage.h"

namespace planfold::test {
namespace {

// The record's events since the last look.
Texts Taken(RecordDouble& files) {
    Texts events = files.Events();
    files.text.clear();
    return events;
}

TEST_F(OrderEntryTest, IsRecordedFromTheSendingToTheAnswer) {
    Open();
    Answer("echoedRequest=get_sip_operation_mode frequency=monthly minimumPeriods=6");
    std::string plan = "1500";
    const auto submit = [&] {
        Type(plan, "6", "C002");
        entry.Submit(kNow);
        return Taken(host.recordFiles);
    };
    const Texts sending{"sending C002 add_sip_orders: MKT CNC"};
    host.onRequest = [&] { EXPECT_EQ(host.recordFiles.Events(), sending) << "before it goes out"; };
    EXPECT_EQ(submit(), sending);
    Answer("echoedRequest=add_sip_orders userText=registered account=C002 registrationNumber=SIP1");
    EXPECT_EQ(Taken(host.recordFiles), Texts{"registered C002 SIP1 registered"});
    host.uuid = "UUID-2";
    submit();
    Answer("echoedRequest=add_sip_orders errorCode=104 userText=no account=C002");
    EXPECT_EQ(Taken(host.recordFiles), Texts{"refused C002 Refused: no (code 104)."});
    host.uuid = "UUID-3";
    host.refuses = true;
    EXPECT_EQ(submit(), (Texts{sending[0], "not_sent C002 Sending Request add_sip_orders Failed"}));
    host.refuses = false;

    // The answer may come before the sending has returned, and after the book has told otherwise.
    host.uuid = "UUID-4";
    host.onRequest = [&] { Answer("echoedRequest=add_sip_orders orderId=UUID-4 registrationNumber=SIP4"); };
    EXPECT_EQ(submit(), (Texts{sending[0], "registered C002 SIP4"}));
    host.uuid = "UUID-5";
    host.onRequest = nullptr;
    submit();
    const OrderLedger& ledger = session.record.Ledger();
    const auto last = static_cast<OrderPlace>(ledger.Orders().size() - 1);
    session.record.Tell(last, OrderEvent::inDoubt, {});
    session.record.Tell(last, OrderEvent::absent, {});
    Answer("echoedRequest=add_sip_orders orderId=UUID-5 registrationNumber=SIP5");
    EXPECT_EQ(ledger[last].State(), OrderState::done);
    host.recordFiles.text.clear();

    // Without a record the dealer decides, and No sends nothing.
    host.refuses = host.recordFiles.writable = false;
    for (const bool yes : {false, true}) {
        view.yes = yes;
        plan = "900";
        host.requests.clear();
        view.questions.clear();
        EXPECT_EQ(submit(), Texts{});
        EXPECT_EQ(view.questions.size(), 1u);
        EXPECT_EQ(host.requests.size(), yes ? 1u : 0u);
        EXPECT_EQ(view.Text(IDC_VALUE), yes ? "" : "900");
    }
    host.recordFiles.hasFolder = false;
    view.questions.clear();
    plan = "800";
    submit();
    EXPECT_EQ(view.questions, Texts{}) << "such a host has no record";
}

TEST_F(OrderEntryTest, AModificationIsRecordedToo) {
    SipRegistration registration;
    registration.number = "SIP7";
    registration.account = "C001";
    registration.exchange = "NSE";
    registration.tradingSymbol = "A-EQ";
    registration.startDate = "05-Mar-2020";
    registration.investType = "value";
    Open();
    entry.FillForModify(registration);
    Type("200", "18", "C001");
    entry.Submit(kNow);
    EXPECT_NE(host.recordFiles.text.find(",SIP7," + host.loginId + ",form,"), std::string::npos)
        << host.recordFiles.text;
    EXPECT_EQ(Taken(host.recordFiles), Texts{"sending C001 SIP7 modify_sip_order"});
    Answer("echoedRequest=modify_sip_order userText=done registrationNumber=SIP7");
    EXPECT_EQ(Taken(host.recordFiles), Texts{"modified C001 SIP7 modify_sip_order: done"});
}

TEST_F(BasketStage, APlacingIsRecordedInPortionsAndStoppedRowsAreTold) {
    Open();
    int last = 0;
    session.host.pu_get_uuid = [](OutString identifier) {
        static int given = 0;
        *identifier = std::to_string(++given);
        return 1;
    };
    Load(Lines(320));
    host.cautionOfRow = {{1, 0}}; // C319 is held back
    host.onRequest = [&] {
        // The row that goes out is among those on the disk.
        const auto sent = static_cast<std::size_t>(last++);
        EXPECT_GT(host.recordFiles.Events().size(), sent);
        if (sent == 70) basket.Runs().Stop();
    };
    host.recordFiles.appends = 0;
    view.yes = false;
    view.duringQuestion = [&] { view.yes = true; };
    basket.Runs().Place();
    Run();
    const Texts events = Taken(host.recordFiles);
    EXPECT_EQ(std::ranges::count_if(events, [](auto& text) { return text.starts_with("sending"); }), 249);
    EXPECT_EQ(std::ranges::count_if(events, [](auto& text) { return text.starts_with("not_sent"); }), 178);
    EXPECT_EQ(view.list.rows.size(), 249u) << "those that were sent were removed";
    EXPECT_EQ(host.recordFiles.appends, 1 + 178);

    // The answers find their orders all the same.
    Answer("echoedRequest=add_sip_orders echoedNumber=320 userText=ok account=C320 registrationNumber=SIP1");
    Answer("echoedRequest=add_sip_orders echoedNumber=318 userText=no errorCode=104");
    Answer("echoedRequest=add_sip_orders echoedNumber=319 userText=stray");
    EXPECT_EQ(Taken(host.recordFiles),
              (Texts{"registered C320 SIP1 ok", "refused C318 Refused: no (code 104)."}));
}

TEST_F(BasketStage, WithoutARecordNothingIsPlacedUnlessTheDealerSaysSo) {
    Open();
    host.recordFiles.writable = false;
    for (const bool yes : {false, true}) {
        Load(Lines(120));
        view.yes = true;
        view.questions.clear();
        view.duringQuestion = [&] { view.duringQuestion = [&, yes] { view.yes = yes; }; };
        basket.Runs().Place();
        Run();
        EXPECT_EQ(Sent().empty(), !yes);
        EXPECT_EQ(
            std::ranges::count_if(view.questions, [](auto& text) { return text.starts_with("The record"); }), 1)
            << "once for the whole basket";
    }
}

TEST_F(BasketStage, TheQuestionAboutTheRecordWaitsForAnotherBox) {
    Open();
    Load(Lines(3));
    host.recordFiles.writable = false;
    view.duringQuestion = [&] { view.otherBox = true; };
    basket.Runs().Place();
    for (int tick = 0; tick < 3; ++tick)
        basket.Runs().Continue();
    basket.Runs().Load(); // nothing else begins
    EXPECT_TRUE(basket.Runs().IsUnderWay());
    EXPECT_EQ(view.questions.size(), 1u);
    view.otherBox = false;
    EXPECT_TRUE(basket.OnBoxGone());
    Run();
    EXPECT_EQ(view.questions.size(), 2u);
    EXPECT_EQ(Sent(), "C3 C2 C1");
}

TEST_F(BasketStage, ARecordThatFailsAfterItsFirstPortionIsAskedAboutAsWell) {
    Open();
    Load(Lines(320));
    host.onRequest = [&] { host.recordFiles.writable = false; };
    view.duringQuestion = [&] { view.duringQuestion = [&] { view.yes = false; }; };
    basket.Runs().Place();
    Run();
    EXPECT_EQ(host.requests.size(), 250u);
    ASSERT_EQ(view.questions.size(), 3u);
    EXPECT_TRUE(view.questions[1].starts_with("The record")) << view.questions[1];
}

class BookRecordTest : public ::testing::Test, protected Stage {
protected:
    void Answer(const Fields& fields) { book.OnResponse(Received(fields).Message()); }

    BookDouble view;
    OrderBook book{session, view, {&control, &control, &control}};
};

TEST_F(BookRecordTest, ChangesAndTheirAnswersAreRecordedAndRowsSettleWhatIsOpen) {
    for (const char* number : {"SIP1", "SIP2", "SIP3"}) {
        Answer(std::string("echoedRequest=om_get_sip_orders queriedRow=1 sipStatus=active registrationNumber=")
               + number);
    }
    view.registered.selected = {0, 1};
    view.reason = "r";
    host.onRequest = [&] { EXPECT_EQ(host.recordFiles.Events().size(), 2u); };
    book.Actions().Cancel();
    EXPECT_EQ(Taken(host.recordFiles),
              (Texts{"sending SIP1 cancel_sip_order", "sending SIP2 cancel_sip_order"}));
    host.onRequest = nullptr;
    Answer("echoedRequest=cancel_sip_order echoedNumber=SIP1 userText=done");
    Answer("echoedRequest=cancel_sip_order echoedNumber=SIP2 errorCode=9");
    view.registered.selected = {2};
    book.Actions().Pause();
    host.refuses = true;
    book.Actions().Pause();
    EXPECT_EQ(Taken(host.recordFiles),
              (Texts{"cancelled SIP1 cancel_sip_order: done",
                     "refused SIP2 cancel_sip_order: Refused: (code 9).", "sending SIP3 pause_sip_order",
                     "sending SIP3 pause_sip_order", "not_sent SIP3 pause_sip_order: "}));
    host.recordFiles.writable = view.yes = false;
    host.refuses = false;
    host.requests.clear();
    book.Actions().PauseSelected();
    book.Actions().Pause();
    EXPECT_EQ(host.requests, Texts{});

    // An order that was sent turns up in the book.
    host.recordFiles.writable = true;
    RecordTexts texts;
    texts[RecordField::orderId] = "o1";
    texts[RecordField::frequency] = "daily";
    const RecordedOrder order(texts);
    session.record.Sending({&order, 1});
    Answer("echoedRequest=om_get_sip_orders queriedRow=1 registrationNumber=SIP5 sipStatus=active orderId=o1");
    EXPECT_EQ(session.record.Ledger()[session.record.Ledger().Find(texts)].Text(RecordField::registration),
              "SIP5");
    EXPECT_EQ(host.recordFiles.Events().back(), "registered SIP5");
}

} // namespace
} // namespace planfold::test

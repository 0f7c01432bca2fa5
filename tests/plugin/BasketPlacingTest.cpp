// The basket without its window: placing and other long runs, and what comes in their middle.
#include "tests/plugin/BasketStage.h"

namespace planfold::test {
namespace {

using BasketPlacingTest = BasketStage;

TEST_F(BasketPlacingTest, ALongLoadCanBeStopped) {
    Open();
    view.clockStep = 200;
    Load(Lines(1000));
    ASSERT_TRUE(basket.Runs().IsUnderWay());
    const std::size_t first = view.list.rows.size();
    EXPECT_TRUE(first > 0 && first < 1000);
    basket.Runs().Load(); // nothing begins meanwhile
    basket.Runs().Place();
    basket.Entry().AddOrModify();
    basket.Delete();
    basket.Saving().Export();
    EXPECT_EQ(view.list.rows.size(), first);
    EXPECT_EQ(view.questions, Texts{});
    basket.Runs().Stop();
    EXPECT_FALSE(basket.Runs().IsUnderWay());
    const std::string count = std::to_string(first);
    EXPECT_EQ(Taken(view.boxes), Texts{"Loading was stopped: " + count + " lines were read, " + count
                                       + " of them are in the list."});
    EXPECT_EQ(view.title, "");

    Load(Lines(1000));
    Run();
    EXPECT_EQ(view.list.rows.size(), 1000u);
    EXPECT_EQ(view.waiting + view.list.changes, 0);
    // The window goes in the middle.
    Load(Lines(1000));
    basket.OnClosed();
    EXPECT_FALSE(basket.Runs().IsUnderWay());
    basket.Runs().Continue();
    EXPECT_EQ(view.boxes, Texts{});
}

TEST_F(BasketPlacingTest, PlacingAsksTheHostFirstAndSendsRowByRow) {
    Open();
    basket.Runs().Place();
    EXPECT_EQ(Taken(view.boxes), Texts{"Please Select an Order"});
    session.m_nSipOperationMode = 1;
    session.m_dMinSipMonthly = 1;
    view.controls[IDC_FREQUENCY].items = {"monthly"};
    Load(Line("C1") + Line("C2") + Line("C3") + Line("C4", "1013", "qty"));
    EXPECT_EQ(view.boxes, Texts{});
    view.yes = false;
    host.calls.clear();
    basket.Runs().Place();
    EXPECT_EQ(Taken(view.questions), Texts{"Are you sure to place these Basket Orders?"});
    EXPECT_EQ(host.calls, Texts{});
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);

    view.yes = true;
    host.caution = 1;
    host.cautionOfRow = {{1, 1}, {2, 0}};
    basket.Runs().Place();
    EXPECT_FALSE(view.controls[IDC_BASKET_PLACE].enabled);
    const std::string told = ",ARBORTEX-EQ,nse_cm,";
    EXPECT_EQ(host.calls,
              (Texts{"pu_free_allocated_memory()", "pu_build_bskt_caution_order_map(C4,qty,CNC,7" + told + "0)",
                     "pu_build_bskt_caution_order_map(C3,value,CNC,150000" + told + "1)",
                     "pu_build_bskt_caution_order_map(C2,value,CNC,150000" + told + "2)",
                     "pu_build_bskt_caution_order_map(C1,value,CNC,150000" + told + "3)",
                     "pu_invoke_bskt_caution_order_confirmation()",
                     "pu_get_cautionary_bskt_confirm_state(ARBORTEX-EQ,nse_cm,0)",
                     "pu_get_cautionary_bskt_confirm_state(ARBORTEX-EQ,nse_cm,1)",
                     "pu_get_cautionary_bskt_confirm_state(ARBORTEX-EQ,nse_cm,2)",
                     "pu_get_cautionary_bskt_confirm_state(ARBORTEX-EQ,nse_cm,3)"}));
    const auto order = [](const std::string& changes, const char* end) {
        const std::string start =
            "startDate=" + std::to_string(ToSeconds({2027, 3, 5})) + " amountOrQuantity=150000 ";
        return TextOf(Order(start + changes)) + " operationMode=1 echoedNumber=" + end
               + " orderSource=TWS location=1";
    };
    EXPECT_EQ(host.requests, (Texts{order("account=C4 investType=qty amountOrQuantity=7", "4 orderId=UUID-1"),
                                    order("account=C3", "3 orderId=UUID-1 cautionaryFlag=Y"),
                                    order("account=C1", "1 orderId=UUID-1")}))
        << "the row in state 0 is left out without a word";
    EXPECT_EQ(host.log.back(),
              "NSE BUY SIP Order : Status : Trigger Pending CNC ARBORTEX-EQ at 1500.00 DAY monthly "
              "for period : 12 Months Client ID : C1 by DEALER1");
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Placed..!!"});
    EXPECT_EQ(basket.Outcome().Status()[3],
              "Sent 3: 0 registered, 0 refused, 0 in doubt  Waiting: 3  Not placed: 1");

    // Pressed once more by whatever way, also in a window opened anew: nothing.
    basket.Runs().Place();
    basket.OnClosed();
    basket.Initialise({});
    EXPECT_FALSE(view.controls[IDC_BASKET_PLACE].enabled);
    basket.Runs().Place();
    host.requests.pop_back(); // for the frequencies
    EXPECT_EQ(host.requests.size(), 3u);

    // Not confirmed: "N".
    for (const int answer : {0, 2}) {
        host.caution = answer;
        Load(Line("C1"));
        host.cautionOfRow = {{0, 1}};
        basket.Runs().Place();
        EXPECT_NE(host.LastRequest().find(" cautionaryFlag=N "), std::string::npos) << answer;
    }
}

TEST_F(BasketPlacingTest, ARowThatFailsDoesNotStopTheOthers) {
    Open();
    host.cautionOfRow = {{0, 1}, {1, 1}};
    for (const auto& [call, failure] : {std::pair(1, "Failed to add the request add_sip_orders"),
                                        {3, "Failed to add the Token"},
                                        {23, "Failed to add Location Id Tag"}}) {
        Load(Line("C1") + Line("C2"));
        host.requests.clear();
        host.log.clear();
        {
            const FailQmxCall fail(FailQmxCall::addData, call);
            basket.Runs().Place();
        }
        EXPECT_EQ(Taken(view.boxes), (Texts{failure, "Order Placed..!!"}));
        EXPECT_EQ(host.requests.size(), 1u) << failure;
        EXPECT_EQ(host.log.size(), 1u) << "no line for the failure";
    }
    Load(Line("C1") + Line("C2"));
    {
        const FailQmxCall fail(FailQmxCall::startMsg, 1);
        basket.Runs().Place();
    }
    EXPECT_EQ(Taken(view.boxes),
              (Texts{"zup_add_parameter: Error while building message", "Order Placed..!!"}));
    Load(Line("C3") + Line("C4"));
    host.refuses = true;
    basket.Runs().Place();
    EXPECT_EQ(Taken(view.boxes),
              (Texts{"Sending Request add_sip_orders Failed\nSending Request add_sip_orders Failed",
                     "Order Placed..!!"}));
    EXPECT_EQ(basket.Rows().SentCount(), 0u);
}

TEST_F(BasketPlacingTest, AStoppedPlacingNeverSendsTwiceUnasked) {
    const auto stopHalfWay = [&](const char* client) {
        Load(Lines(40, client));
        view.clockStep = 20;
        basket.Runs().Place();
        ASSERT_TRUE(basket.Runs().IsUnderWay());
        basket.Runs().Place(); // nothing begins meanwhile
        while (host.requests.empty())
            basket.Runs().Continue();
        basket.Runs().Stop();
        ASSERT_FALSE(basket.Runs().IsUnderWay());
    };
    Open();
    view.duringQuestion = [&] { view.duringQuestion = [&] { view.yes = false; }; };
    stopHalfWay("C");
    const std::size_t sent = host.requests.size();
    ASSERT_TRUE(sent > 0 && sent < 40);
    const std::string count = std::to_string(sent);
    const std::string offer = "Placing was stopped: " + count + " of 40 orders were sent.\nRemove these "
                              + count + " from the basket?";
    EXPECT_EQ(Taken(view.questions), (Texts{"Are you sure to place these Basket Orders?", offer}));
    EXPECT_EQ(basket.Rows().SentCount(), sent);
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    EXPECT_EQ(view.boxes, Texts{}) << "not all was placed";
    // They stay: the next one asks first.
    view.choice = Choice::cancel;
    basket.Runs().Place();
    EXPECT_EQ(Taken(view.questions), Texts{count
                                           + " of the 40 orders have already been sent.\n\n"
                                             "Yes: place all 40, and so these again.\n"
                                             "No: place only the other "
                                           + std::to_string(40 - sent) + ".\nCancel: place none."});
    EXPECT_EQ(host.requests.size(), sent);

    // They go: the rest is placed, each once.
    host.requests.clear();
    view.yes = true;
    stopHalfWay("D");
    EXPECT_EQ(view.list.rows.size() + host.requests.size(), 40u);
    Taken(view.questions);
    basket.Runs().Place();
    Run();
    EXPECT_EQ(Taken(view.questions), Texts{"Are you sure to place these Basket Orders?"});
    EXPECT_EQ(std::set(host.requests.begin(), host.requests.end()).size(), 40u);
    EXPECT_EQ(host.requests.size(), 40u);
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Placed..!!"});

    // The window is closed half-way: opened again, it knows what was sent.
    Load(Lines(40, "E"));
    basket.Runs().Place();
    while (basket.Rows().SentCount() == 0)
        basket.Runs().Continue();
    basket.OnClosed();
    Open();
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    Taken(view.questions);
    basket.Runs().Place();
    EXPECT_EQ(view.questions.size(), 1u);
    EXPECT_EQ(view.questions[0].find("Are you sure"), std::string::npos);
}

TEST_F(BasketPlacingTest, WhatWasSentIsAskedAboutBeforeItIsSentAgain) {
    Open();
    const auto place = [&](Choice choice) {
        view.choice = choice;
        host.calls.clear();
        Taken(view.questions);
        basket.Runs().Place();
        return Sent();
    };
    Load(Lines(3));
    EXPECT_EQ(place(Choice::cancel), "C3 C2 C1");
    EXPECT_EQ(Taken(view.questions), Texts{"Are you sure to place these Basket Orders?"});

    // Complete, and then one more; one that was changed is another order.
    Add("C9");
    view.list.selected = {view.list.rows[2]};
    basket.Entry().Activate(view.list.rows[2]);
    view.SetText(IDC_VALUE, "20");
    basket.Entry().AddOrModify();
    EXPECT_EQ(place(Choice::cancel), "");
    EXPECT_EQ(view.questions.size(), 1u);
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    EXPECT_EQ(place(Choice::no), "C9 C2");
    EXPECT_EQ(std::ranges::count(host.calls,
                                 "pu_build_bskt_caution_order_map(C2,value,CNC,2000,ARBORTEX-EQ,nse_cm,2)"),
              1)
        << "by its place among all rows";
    EXPECT_EQ(Taken(view.boxes), (Texts{"Order Placed..!!", "Order Placed..!!"}));
    basket.Entry().AddOrModify(); // refused, and enables the button
    EXPECT_EQ(place(Choice::no), "");
    EXPECT_EQ(Taken(view.questions), Texts{"4 of the 4 orders have already been sent.\n\n"
                                           "Yes: place all 4, and so these again.\nNo: place none."});
    EXPECT_EQ(place(Choice::yes), "C9 C3 C2 C1");

    // Loaded again, each is known by what it orders, as often as it was sent.
    Load(Line("C3") + Line("C8") + Line("C3") + Line("C3"));
    EXPECT_EQ(basket.Outcome().Status()[3],
              "Duplicates: 3  Sent 2: 0 registered, 0 refused, 0 in doubt  Waiting: 2");
    EXPECT_EQ(place(Choice::no), "C8");
    EXPECT_EQ(view.questions[1],
              "1 like an order of today: C3 ARBORTEX-EQ monthly, sent at 15:30, no answer\n\n"
              "Yes: place all 2.\nNo: place only the other 1.\nCancel: place none.");
    std::string dearer = Line("C1");
    dearer.replace(dearer.find("150000"), 6, "160000");
    Load(Line("C1") + Line("C2", "1013", "qty") + dearer);
    EXPECT_EQ(place(Choice::no), "C1 C2");
}

TEST_F(BasketPlacingTest, AsksBeforeOrdersAreReplacedOrGoToAnUnknownClient) {
    Open();
    Add("C1");
    view.yes = false;
    Load(Lines(2));
    EXPECT_EQ(Taken(view.questions),
              Texts{"Orders in the basket that were not sent: 1.\nLoad the file in their place?"});
    EXPECT_EQ(Rows(BasketField::account), "C1");
    Add("NOBODY");
    EXPECT_EQ(Taken(view.questions),
              Texts{"The terminal knows no client NOBODY.\nTake the order into the basket all the same?"});
    EXPECT_EQ(Rows(BasketField::account), "C1");
    view.yes = true;
    Add("NOBODY");
    view.yes = false;
    Taken(view.questions);
    basket.Runs().Place();
    EXPECT_EQ(view.questions, Texts{"The terminal knows no client NOBODY.\nPlace their orders all the same?"});
    EXPECT_EQ(Sent(), "");
    view.yes = true;
    basket.Runs().Place();
    EXPECT_EQ(Sent(), "NOBODY C1");
    Load(Lines(22));
    Taken(view.questions);
    session.host.pu_is_valid_account = [](InString) { return 0; };
    view.yes = false;
    basket.Runs().Place();
    ASSERT_EQ(view.questions.size(), 1u);
    EXPECT_TRUE(Taken(view.questions)[0].ends_with(", C7 and 2 more.\nPlace their orders all the same?"));
    view.yes = true;
    Load(Lines(2));
    Taken(view.questions);
    basket.Runs().Place();
    Taken(view.questions);
    session.host.pu_is_valid_account = nullptr;
    Add("NOBODY");
    EXPECT_EQ(view.questions, Texts{}) << "all were sent, and the host cannot tell";
}

TEST_F(BasketPlacingTest, AsksOnceTheBoxIsGoneThatIsInTheWay) {
    Open();
    const auto boxGoes = [&] {
        EXPECT_EQ(Taken(view.questions), Texts{});
        view.otherBox = false;
        while (!basket.OnBoxGone()) {
        }
        EXPECT_TRUE(basket.OnBoxGone());
        return Taken(view.questions);
    };
    const std::string take =
        "The terminal knows no client NOBODY.\nTake the order into the basket all the same?";
    for (const char* amount : {"2000", "1500"}) {
        view.otherBox = true;
        Add("NOBODY", amount);
        view.SetText(IDC_VALUE, "1500");
        EXPECT_EQ(boxGoes(), *amount == '2' ? Texts{} : Texts{take}) << "what is no longer shown is not taken";
        EXPECT_EQ(Rows(BasketField::account), *amount == '2' ? "" : "NOBODY");
    }
    view.otherBox = true;
    Load(Lines(40));
    basket.Runs().Place();
    basket.Runs().Place();
    EXPECT_EQ(Rows(BasketField::account), "NOBODY");
    view.clockStep = 20;
    EXPECT_EQ(boxGoes(), (Texts{"Orders in the basket that were not sent: 1.\nLoad the file in their place?",
                                "Are you sure to place these Basket Orders?"}));

    // Its rows may go before the question comes, and others take their places.
    while (host.requests.size() < 2)
        basket.Runs().Continue();
    view.otherBox = true;
    basket.Runs().Stop();
    view.list.selected = {view.list.rows[0]};
    basket.Delete();
    Add("C50");
    EXPECT_EQ(boxGoes(),
              Texts{"Placing was stopped: 4 of 40 orders were sent.\nRemove these 4 from the basket?"});
    EXPECT_EQ(view.list.rows.size(), 37u);
    EXPECT_EQ(Rows(BasketField::account).substr(0, 7), "C50 C36");
    view.otherBox = true;
    basket.Runs().Place();
    basket.OnClosed();
    EXPECT_EQ(boxGoes(), Texts{}) << "with the window the question goes";
}

TEST_F(BasketPlacingTest, TheExitInTheMiddleEndsIt) {
    const auto end = [&] {
        session.End();
        basket.OnClosed();
    };
    Open();
    Load(Line("C1") + Line("C2"));
    host.duringCaution = end;
    basket.Runs().Place();
    EXPECT_EQ(host.requests, Texts{});
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_EQ(host.CallsOf("pu_get_cautionary_bskt_confirm_state"), 0);
}

// Closed in the host's hands and opened again at once: what was under way takes no part in the new window, and
// nothing is begun before it has ended.
TEST_F(BasketPlacingTest, AWindowOpenedAnewInTheMiddleStartsAfresh) {
    const auto openAnew = [&] {
        basket.OnClosed();
        Open();
        Load(Line("NEW"));
        basket.Delete();
        basket.Runs().Place();
    };
    Open();
    host.duringLog = openAnew;
    Load(Line("C1") + "x\n" + Lines(9));
    EXPECT_EQ(Rows(BasketField::account), "C1");
    EXPECT_EQ(view.waiting + view.list.changes, 0);

    // The row that is just being sent counts as sent.
    for (const auto& [during, sent] : {std::pair{&host.duringRowState, 0u}, {&host.duringLog, 1u}}) {
        Load(Line("C1") + Line("C2"));
        host.requests.clear();
        *during = openAnew;
        Taken(view.boxes);
        Taken(view.questions);
        basket.Runs().Place();
        EXPECT_EQ(Rows(BasketField::account), "C2 C1");
        EXPECT_EQ(basket.Rows().SentCount() + view.boxes.size(), sent);
        view.yes = false;
        view.choice = Choice::cancel;
        basket.Runs().Place();
        EXPECT_EQ(Taken(view.questions).back().starts_with("1 of the 2 orders have already"), sent == 1);
        view.yes = true;
    }
}

TEST_F(BasketPlacingTest, NothingIsDoneTwiceOrMixedUpInTheHostsHands) {
    Open();
    host.duringScripLookUp = [&] { Add("C1"); };
    Add("C1");
    EXPECT_EQ(Rows(BasketField::account), "C1");

    Add("C2", "20");
    view.list.selected = {view.list.rows[1]};
    host.duringScripFill = [&] { basket.Entry().Activate(view.list.rows[0]); };
    basket.Entry().Activate(view.list.rows[1]);
    EXPECT_EQ(view.Text(IDC_CLIENT_SEARCH) + " " + view.Text(IDC_VALUE), "C1 1500.00");
    host.duringScripLookUp = [&] { basket.Entry().AddOrModify(); };
    basket.Entry().AddOrModify();
    EXPECT_EQ(Rows(BasketField::account), "C2 C1") << "a second press does not add what the first modifies";

    // The rows that a stopped placing offers to remove cannot go under the box before.
    Load(Lines(3));
    const FailQmxCall failing(FailQmxCall::addData, 1);
    host.duringLog = [&] { basket.Runs().Stop(); };
    view.duringBox = [&] {
        view.list.selected = view.list.rows;
        basket.Delete();
    };
    basket.Runs().Place();
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");
}

} // namespace
} // namespace planfold::test

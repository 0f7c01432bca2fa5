// The basket without its window: the form, loading, editing, placing, export and answers.
#include "tests/plugin/BasketDouble.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

Texts Taken(Texts& texts) {
    return std::exchange(texts, {});
}

class BasketDialogTest : public ::testing::Test, protected Stage {
protected:
    void Open(std::string_view customProducts = {}) {
        basket.Initialise(kNow, customProducts);
        Answer({{32767, {"get_sip_operation_mode"}}, {32766, {"5"}}});
        host.requests.clear();
        host.calls.clear();
    }
    void Answer(const Fields& fields) { basket.OnResponse(Received(fields).Message()); }
    void Fill(const std::string& client = "C001", const std::string& amount = "1500") {
        view.SetText(IDC_CLIENT_SEARCH, client);
        view.SetText(IDC_VALUE, amount);
        view.SetText(IDC_PERIOD, "12");
        view.SetDate(IDC_START_DATE, {2027, 3, 5});
    }
    void Add(const std::string& client, const std::string& amount = "1500") {
        Fill(client, amount);
        basket.AddOrModify(kNow);
    }
    void Load(const std::string& text) {
        view.files["basket.csv"] = text;
        basket.Load(kNow);
    }
    void Run() {
        while (basket.IsUnderWay())
            basket.Continue();
    }
    // The rows from the top by one field, "C002 C001".
    std::string Rows(BasketField field) const {
        std::string text;
        for (const RecordId record : view.list.rows)
            text.append(record == view.list.rows[0] ? "" : " ").append(basket.Rows()[record].Text(field));
        return text;
    }
    std::string Serials() const {
        std::string text;
        for (const RecordId record : view.list.rows)
            text += std::to_string(basket.Rows()[record].SerialNumber()) + " ";
        return text;
    }

    BasketDouble view;
    Basket basket{session, view, &control};
};

std::string Line(const std::string& client, const std::string& token = "1013",
                 const std::string& by = "value") {
    return client + ",nse_cm,EQ,ARBORTEX," + token
           + ",ARBORTEX-EQ,CNC,150000,7,monthly,,05/Mar/2027,12,MKT,B,,,," + by + ",\n";
}
std::string Lines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += Line("C" + std::to_string(i));
    return text;
}

TEST_F(BasketDialogTest, OpensWithItsFirstContents) {
    host.rights.insert("QV: Planfold: Custom");
    host.activeClient = "c002";
    basket.Initialise(kNow, "MIS,CNC,XYZ");
    EXPECT_EQ(view.Items(IDC_EXCHANGE), (Texts{"NSE", "BSE"}));
    EXPECT_EQ(view.Items(IDC_ACTION), (Texts{"SIP", "SWP"}));
    EXPECT_EQ(view.Items(IDC_INVEST_BY), (Texts{"Amount", "Quantity"}));
    EXPECT_EQ(view.Items(IDC_ORDER_TYPE), Texts{"MARKET"});
    EXPECT_EQ(view.Items(IDC_PRODUCT), (Texts{"CNC", "MIS"}));
    EXPECT_EQ(view.Text(IDC_SERIES) + view.Text(IDC_PERIOD) + view.Text(IDC_CLIENT_SEARCH), "EQ1c002");
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
    EXPECT_FALSE(view.controls[IDC_BASKET_PLACE].enabled);
    EXPECT_EQ(host.LastRequest(), "0=get_sip_operation_mode");
    EXPECT_EQ(std::ranges::count(host.calls, "register_hotkey(SIP Basket Entry,193,Delete,Basket Delete,del)"),
              1);
    Answer({{32767, {"get_sip_operation_mode"}}, {10012, {"monthly", "yearly"}}, {54101, {"6", "2"}}});
    EXPECT_EQ(view.Items(IDC_FREQUENCY), (Texts{"monthly", "yearly"}));
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "SIP Periods");
    EXPECT_EQ(session.m_dMinSipMonthly, 6.0);

    // The client combo stands in for the search: the first entry that begins with the active client.
    session.host.pu_get_entered_text_results = nullptr;
    for (const auto& [active, shown] : {std::pair{"c00", "C001"}, {"c002", "C002"}, {"X", "C001"}}) {
        host.activeClient = active;
        basket.Initialise(kNow, {});
        EXPECT_EQ(view.Text(IDC_CLIENT_COMBO), shown) << active;
    }
    for (const char* export_ : {"register_hotkey", "pu_InvokeDialog"}) {
        host.missing = {export_};
        host.calls.clear();
        basket.Initialise(kNow, {});
        EXPECT_EQ(host.CallsOf("register_hotkey"), 0);
        EXPECT_FALSE(basket.HostOwnsDeleteKey());
    }
}

TEST_F(BasketDialogTest, TheFormIsCheckedInItsOwnOrder) {
    struct Row {
        const char* client;
        const char* value;
        const char* period;
        bool byQuantity;
        const char* scrip; // as the host gives it
        const char* refusal;
    };
    const Row rows[] = {
        {"", "", "", false, "nse_cm|", "Enter Token"},
        {"", "", "", false, "", "Please select the ClientID"},
        {"C001", "", "", false, "", "Enter a Month."},
        {"C001", "", "61", false, "", "Month Should be Between 1 and 60"},
        {"C001", "", "12", false, "", "Enter Amount"},
        {"C001", "0", "12", false, "", "Enter valid Amount"},
        {"C001", "10000000", "12", false, "", "cannot have more than 7 digits in rupees part of Amount"},
        {"C001", "", "12", true, "", "Enter Quantity"},
        {"C001", "0", "12", true, "", "Enter valid Qty"},
        {"C001", ".", "12", true, "", "Enter valid Qty"},
        {"C001", "00", "12", true, "", "Quantity cannot be zero"},
        {"C001", "3000000000", "12", true, "", " should not be more than integer max value(2147483647)"},
    };
    Open();
    for (const Row& row : rows) {
        Fill(row.client, "");
        view.SetText(row.byQuantity ? IDC_BASKET_QUANTITY : IDC_VALUE, row.value);
        view.SetText(IDC_PERIOD, row.period);
        view.Select(IDC_INVEST_BY, row.byQuantity);
        host.exchangeAndToken = row.scrip;
        basket.AddOrModify(kNow);
        EXPECT_EQ(Taken(view.boxes), Texts{row.refusal});
    }
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled) << "also by a refused one";
    EXPECT_TRUE(view.list.rows.empty());
}

TEST_F(BasketDialogTest, RowsAreAddedInFrontModifiedAndDeleted) {
    Open();
    Add("C1");
    Add("C2", "0.5");
    view.Select(IDC_INVEST_BY, 1);
    view.SetText(IDC_BASKET_QUANTITY, "7");
    view.Select(IDC_ACTION, 1);
    Add("C3");
    EXPECT_EQ(Rows(BasketField::clientId), "C3 C2 C1");
    EXPECT_EQ(Rows(BasketField::amount), " 50 150000");
    EXPECT_EQ(Rows(BasketField::quantity), "7  ");
    EXPECT_EQ(Rows(BasketField::sideWord), "SELL BUY BUY");
    EXPECT_EQ(Rows(BasketField::startDateText), "05/Mar/2027 05/Mar/2027 05/Mar/2027");
    EXPECT_EQ(Serials(), "3 2 1 ");
    EXPECT_EQ(basket.Status(), (std::vector<std::string>{"Rows: 3", "SIP: amount 1500.50, quantity 0",
                                                         "SWP: amount 0.00, quantity 7", ""}));

    basket.Activate(view.list.rows[1]);
    EXPECT_EQ(view.Text(IDC_SUBMIT) + view.Text(IDC_CLIENT_SEARCH) + view.Text(IDC_VALUE), "&ModifyC20.50");
    EXPECT_EQ(view.Text(IDC_ACTION) + view.Text(IDC_INVEST_BY), "SIPAmount");
    view.SetText(IDC_VALUE, "60");
    view.list.selected = {view.list.rows[1]};
    basket.AddOrModify(kNow);
    EXPECT_EQ(Rows(BasketField::amount), " 6000 150000");
    EXPECT_EQ(Serials(), "3 4 1 ") << "an answer to the earlier order no longer finds it";
    EXPECT_EQ(view.Text(IDC_SUBMIT) + view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "Add");

    // The row that was to be modified is gone.
    basket.Activate(view.list.rows[1]);
    basket.Delete();
    EXPECT_EQ(Rows(BasketField::clientId), "C3 C1");
    basket.AddOrModify(kNow);
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Not Found"});
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
    EXPECT_EQ(Rows(BasketField::clientId), "C3 C1");

    // What the form cannot show is told, and the button adds.
    view.controls[IDC_SYMBOL].items = {"BYTEFIN"};
    view.controls[IDC_PRODUCT].items = {};
    basket.Activate(view.list.rows[0]);
    EXPECT_EQ(Taken(view.boxes), (Texts{"Failed to Load", "Failed to Load"}));
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
}

TEST_F(BasketDialogTest, AFileBecomesRowsAndRejectedLines) {
    Open();
    Add("OLD");
    Load(Line("C1") + Line("C2", "9") + "x\n" + Line("C3"));
    EXPECT_EQ(Rows(BasketField::clientId), "C3 C1");
    EXPECT_EQ(Serials(), "3 2 ") << "numbers go on";
    ASSERT_EQ(basket.Rejected().size(), 2u);
    EXPECT_EQ(basket.Rejected()[0].report,
              Line("C2", "9") + "failed to load due to InValid Token In Line Number 2");
    EXPECT_EQ(basket.Rejected()[1].reason, "Invalid Format");
    EXPECT_EQ(Taken(view.boxes), Texts{"Invalid Format"}) << "the last reason";
    EXPECT_EQ(host.log, (Texts{"NSE  SIP Order Upload Failed: CNC 9 Client ID : C2 by DEALER1 In Line Number 2",
                               "  SIP Order Upload Failed:   Client ID :  by DEALER1 In Line Number 3"}));
    EXPECT_EQ(view.titles, (Texts{" - Loading Basket. Please Wait.... ", ""}));
    EXPECT_EQ(view.waiting + view.list.changes, 0);

    basket.SaveRejected();
    EXPECT_EQ(view.files["basket.csv"], Line("C2", "9") + "x\n");
    basket.ActivateRejected(0);
    EXPECT_EQ(view.Text(IDC_CLIENT_SEARCH) + view.Text(IDC_SUBMIT), "C2Add");
    basket.ActivateRejected(1);
    EXPECT_EQ(Taken(view.boxes), Texts{"The line does not have the columns of a basket file."});

    // Nothing is changed by a file that is not there, or when none is chosen.
    view.path = "missing.csv";
    basket.Load(kNow);
    EXPECT_EQ(Taken(view.boxes), Texts{"File Open Error"});
    view.path.reset();
    basket.Load(kNow);
    EXPECT_EQ(Rows(BasketField::clientId), "C3 C1");

    view.path = "basket.csv";
    Load("");
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_TRUE(view.list.rows.empty() && basket.Rejected().empty());

    // Frequencies that the server does not list are told at once, each line.
    Answer({{32767, {"get_sip_operation_mode"}}, {10012, {"yearly"}}, {54101, {"2"}}});
    view.controls[IDC_FREQUENCY].items = {"yearly"};
    Load(Line("C1") + Line("C2"));
    EXPECT_EQ(Taken(view.boxes), Texts{"monthly Frequency not set\nmonthly Frequency not set"});
    EXPECT_EQ(basket.Rejected()[1].reason, "monthly Frequency not set");
}

TEST_F(BasketDialogTest, ALongLoadCanBeStopped) {
    Open();
    view.clockStep = 200;
    Load(Lines(1000));
    ASSERT_TRUE(basket.IsUnderWay());
    const std::size_t first = view.list.rows.size();
    EXPECT_TRUE(first > 0 && first < 1000);
    basket.Load(kNow); // nothing begins meanwhile
    basket.Place();
    basket.AddOrModify(kNow);
    basket.Delete();
    basket.Export();
    EXPECT_EQ(view.list.rows.size(), first);
    EXPECT_EQ(view.questions, Texts{});
    basket.Stop();
    EXPECT_FALSE(basket.IsUnderWay());
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
    EXPECT_FALSE(basket.IsUnderWay());
    basket.Continue();
    EXPECT_EQ(view.boxes, Texts{});
}

TEST_F(BasketDialogTest, PlacingAsksTheHostFirstAndSendsRowByRow) {
    Open();
    basket.Place();
    EXPECT_EQ(Taken(view.boxes), Texts{"Please Select an Order"});
    session.m_nSipOperationMode = 1;
    session.m_dMinSipMonthly = 1;
    view.controls[IDC_FREQUENCY].items = {"monthly"};
    Load(Line("C1") + Line("C2") + Line("C3") + Line("C4", "1013", "qty"));
    EXPECT_EQ(view.boxes, Texts{});
    view.yes = false;
    host.calls.clear();
    basket.Place();
    EXPECT_EQ(Taken(view.questions), Texts{"Are you sure to place these Basket Orders?"});
    EXPECT_EQ(host.calls, Texts{});
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);

    view.yes = true;
    host.caution = 1;
    host.cautionOfRow = {{1, 1}, {2, 0}};
    basket.Place();
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
    const std::string start = "0=add_sip_orders 63001=nse_cm 10100=1013 63100=ARBORTEX-EQ 12003=B 12008=MKT "
                              "64030=CNC ";
    const std::string middle = " 10012=monthly 49165=" + std::to_string(ToSeconds({2027, 3, 5}))
                               + " 63415=12 31003=DEALER1 54056=C 54001=";
    const std::string end = " 12005=DAY 64056=BROKER 64053=BRANCH 63715=1 32760=";
    EXPECT_EQ(
        host.requests,
        (Texts{start + "54152=qty 53063=7" + middle + "C4" + end + "4 54158=UUID-1 64756=TWS 61117=1",
               start + "54152=value 53063=150000" + middle + "C3" + end
                   + "3 54158=UUID-1 53405=Y 64756=TWS 61117=1",
               start + "54152=value 53063=150000" + middle + "C1" + end + "1 54158=UUID-1 64756=TWS 61117=1"}))
        << "the row in state 0 is left out without a word";
    EXPECT_EQ(host.log.back(),
              "NSE BUY SIP Order : Status : Trigger Pending CNC ARBORTEX-EQ at 1500.00 DAY monthly "
              "for period : 12 Months Client ID : C1 by DEALER1");
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Placed..!!"});
    EXPECT_EQ(basket.Status()[3], "Sent: 3");

    // Pressed once more by whatever way: nothing.
    basket.Place();
    EXPECT_EQ(host.requests.size(), 3u);

    // Not confirmed: "N".
    host.caution = 0;
    Load(Line("C1"));
    host.cautionOfRow = {{0, 1}};
    basket.Place();
    EXPECT_NE(host.LastRequest().find(" 53405=N "), std::string::npos);
}

TEST_F(BasketDialogTest, ARowThatFailsDoesNotStopTheOthers) {
    const char* failures[] = {
        "Failed to add the request add_sip_orders",
        "Failed to add the Exchange segment",
        "Failed to add the Token",
        "Failed to add the Scrip Symbol",
        "Failed to mention either buy or sell",
        "Failed to mention the order Type",
        "Failed to add the Product Type",
        "Failed to add the Amount/Quantity",
        "Failed to add Amount or Quantity",
        "Failed to add the Frequency",
        "Failed to add the Start Date",
        "Failed to add the Total Period",
        "Failed to add User",
        "Failed to add customer Firm Id",
        "Failed to add Account ID",
        "Failed to specify the day",
        "Failed to add Broker Name",
        "Failed to add Branch Name",
        "Failed to add sequence",
        "Failed to add Order ID",
        "Failed to add Order ID",
        "Failed to add Order Source",
        "Failed to add Location Id Tag",
    };
    Open();
    host.cautionOfRow = {{0, 1}, {1, 1}};
    int call = 0;
    for (const char* failure : failures) {
        Load(Line("C1") + Line("C2"));
        host.requests.clear();
        host.log.clear();
        {
            const FailQmxCall fail(FailQmxCall::addData, ++call);
            basket.Place();
        }
        EXPECT_EQ(Taken(view.boxes), (Texts{failure, "Order Placed..!!"}));
        EXPECT_EQ(host.requests.size(), 1u) << failure;
        EXPECT_EQ(host.log.size(), 1u) << "no line for the failure";
    }
    Load(Line("C1") + Line("C2"));
    {
        const FailQmxCall fail(FailQmxCall::startMsg, 1);
        basket.Place();
    }
    EXPECT_EQ(Taken(view.boxes),
              (Texts{"zup_add_parameter: Error while building message", "Order Placed..!!"}));
    Load(Line("C1") + Line("C2"));
    host.refuses = true;
    basket.Place();
    EXPECT_EQ(Taken(view.boxes),
              (Texts{"Sending Request add_sip_orders Failed\nSending Request add_sip_orders Failed",
                     "Order Placed..!!"}));
    EXPECT_EQ(basket.Rows().SentCount(), 0u);
}

TEST_F(BasketDialogTest, AnswersFindTheirRowBySerialNumber) {
    Open();
    Load(Line("C1") + Line("C2"));
    struct Row {
        Fields answer;
        const char* remarks;
    };
    const Fields::value_type name{32767, {"add_sip_orders"}};
    const Row rows[] = {
        {{name, {32760, {"1"}}, {20008, {"registered"}}}, "NA registered"},
        {{name, {32760, {"2"}}}, " registered"},
        {{name, {32760, {"3"}}, {20008, {"x"}}}, " registered"},
        {{name, {32760, {"0"}}, {20008, {"x"}}}, " registered"},
        {{name, {32760, {"-1"}}, {20008, {"x"}}}, " registered"},
        {{name, {32760, {"99999999999"}}, {20008, {"x"}}}, " registered"},
        {{name, {20008, {"x"}}}, " registered"},
        {{name, {32760, {"2"}}, {20008, {"x"}}, {32766, {"17"}}}, " registered"},
    };
    host.log.clear();
    for (const Row& row : rows) {
        Answer(row.answer);
        EXPECT_EQ(Rows(BasketField::remarks), row.remarks);
    }
    EXPECT_EQ(host.log, Texts{"Error in response : add_sip_orders . Error Code : 17"});
    // The number of a row that has gone belongs to nobody.
    view.list.selected = {view.list.rows[0]};
    basket.Delete();
    Add("C9");
    Answer({name, {32760, {"2"}}, {20008, {"late"}}});
    EXPECT_EQ(Rows(BasketField::remarks), "NA registered");
}

TEST_F(BasketDialogTest, AStoppedPlacingNeverSendsTwiceUnasked) {
    const auto stopHalfWay = [&] {
        Load(Lines(40));
        view.clockStep = 20;
        basket.Place();
        ASSERT_TRUE(basket.IsUnderWay());
        basket.Place(); // nothing begins meanwhile
        while (host.requests.empty())
            basket.Continue();
        basket.Stop();
        ASSERT_FALSE(basket.IsUnderWay());
    };
    Open();
    view.duringQuestion = [&] { view.duringQuestion = [&] { view.yes = false; }; };
    stopHalfWay();
    const std::size_t sent = host.requests.size();
    ASSERT_TRUE(sent > 0 && sent < 40);
    const std::string count = std::to_string(sent);
    const std::string offer = "Placing was stopped: " + count + " of 40 orders were sent.\nRemove these "
                              + count + " from the basket?";
    EXPECT_EQ(Taken(view.questions), (Texts{"Are you sure to place these Basket Orders?", offer}));
    EXPECT_EQ(basket.Status()[3], "Sent: " + count);
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    EXPECT_EQ(view.boxes, Texts{}) << "not all was placed";
    // They stay: the next one asks first.
    basket.Place();
    EXPECT_EQ(Taken(view.questions), Texts{count
                                           + " of the 40 orders have already been sent. Place all of them, and "
                                             "so these again?"});
    EXPECT_EQ(host.requests.size(), sent);

    // They go: the rest is placed, each once.
    host.requests.clear();
    view.yes = true;
    stopHalfWay();
    EXPECT_EQ(view.list.rows.size() + host.requests.size(), 40u);
    Taken(view.questions);
    basket.Place();
    Run();
    EXPECT_EQ(Taken(view.questions), Texts{"Are you sure to place these Basket Orders?"});
    EXPECT_EQ(std::set(host.requests.begin(), host.requests.end()).size(), 40u);
    EXPECT_EQ(host.requests.size(), 40u);
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Placed..!!"});

    // The window is closed half-way: opened again, it knows what was sent.
    Load(Lines(40));
    basket.Place();
    while (basket.Rows().SentCount() == 0)
        basket.Continue();
    basket.OnClosed();
    Open();
    EXPECT_TRUE(view.controls[IDC_BASKET_PLACE].enabled);
    view.yes = false;
    Taken(view.questions);
    basket.Place();
    EXPECT_EQ(view.questions.size(), 1u);
    EXPECT_EQ(view.questions[0].find("Are you sure"), std::string::npos);
}

TEST_F(BasketDialogTest, TheExitInTheMiddleEndsIt) {
    const auto end = [&] {
        session.End();
        basket.OnClosed();
    };
    Open();
    Load(Line("C1") + Line("C2"));
    host.duringCaution = end;
    basket.Place();
    EXPECT_EQ(host.requests, Texts{});
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_EQ(host.CallsOf("pu_get_cautionary_bskt_confirm_state"), 0);
}

TEST_F(BasketDialogTest, ExportWritesEveryRowAndLoadsAgain) {
    Open();
    basket.Export();
    EXPECT_EQ(Taken(view.boxes), Texts{"No items in the list"});
    Load(Line("C1") + Line("C2"));
    view.list.hidden = 2;
    EXPECT_EQ(basket.Status()[0], "Rows: 2 (2 hidden)");
    basket.Export();
    EXPECT_EQ(Taken(view.boxes), Texts{"Exported to File Successfully"});
    const std::string seconds = std::to_string(ToSeconds({2027, 3, 5}));
    const auto exported = [&](const char* client) {
        return std::string(client) + ",nse_cm,EQ,ARBORTEX,1013,ARBORTEX-EQ,CNC,150000,7,monthly," + seconds
               + ",05/Mar/2027,12,MKT,B,BUY,C,DAY,value, ,\n";
    };
    EXPECT_EQ(view.files["basket.csv"], exported("C2") + exported("C1"));
    basket.Load(kNow);
    EXPECT_EQ(Rows(BasketField::clientId), "C1 C2");
    view.writable = false;
    basket.Export();
    EXPECT_EQ(view.boxes, Texts{" Basket File Write Error: File Open Error"});
}

TEST_F(BasketDialogTest, RowsThatStandTwiceAreMarked) {
    Open();
    Load(Line("C1") + Line("C2") + Line("C1") + Line("C1"));
    EXPECT_EQ(basket.Status()[3], "Twice: 3");
    EXPECT_TRUE(basket.Rows().StandsTwice(view.list.rows[0]));
    EXPECT_FALSE(basket.Rows().StandsTwice(view.list.rows[2]));
    for (const char* left : {"Twice: 2", ""}) {
        view.list.selected = {view.list.rows[0]};
        basket.Delete();
        EXPECT_EQ(basket.Status()[3], left);
    }
}

} // namespace
} // namespace planfold::test

// The basket without its window: the form, loading, editing, export and answers.
#include "tests/plugin/BasketStage.h"

#include <cstring>

namespace planfold::test {
namespace {

using BasketDialogTest = BasketStage;

TEST_F(BasketDialogTest, OpensWithItsFirstContents) {
    host.rights.insert("QV: Planfold: Custom");
    host.activeClient = "c002";
    basket.Initialise("MIS,CNC,XYZ");
    EXPECT_EQ(view.Items(IDC_PRODUCT), (Texts{"CNC", "MIS"}));
    EXPECT_EQ(view.Text(IDC_SERIES) + view.Text(IDC_PERIOD) + view.Text(IDC_CLIENT_SEARCH), "EQ1c002");
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
    EXPECT_FALSE(view.controls[IDC_BASKET_PLACE].enabled);
    EXPECT_TRUE(view.controls[IDC_BASKET_QUANTITY].digitsOnly && !view.controls[IDC_VALUE].digitsOnly);
    EXPECT_EQ(host.LastRequest(), "get_sip_operation_mode");
    EXPECT_EQ(std::ranges::count(host.calls, "register_hotkey(SIP Basket Entry,193,Delete,Basket Delete,del)"),
              1);
    Answer("echoedRequest=get_sip_operation_mode frequency=monthly,yearly minimumPeriods=6,2");
    EXPECT_EQ(view.Items(IDC_FREQUENCY), (Texts{"monthly", "yearly"}));
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "SIP Periods");
    EXPECT_EQ(session.m_dMinSipMonthly, 6.0);

    // The client combo stands in for the search: the first entry that begins with the active client.
    session.host.pu_get_entered_text_results = nullptr;
    for (const auto& [active, shown] : {std::pair{"c00", "C001"}, {"c002", "C002"}, {"X", "C001"}}) {
        host.activeClient = active;
        basket.Initialise({});
        EXPECT_EQ(view.Text(IDC_CLIENT_COMBO), shown) << active;
    }
    for (const char* export_ : {"register_hotkey", "pu_InvokeDialog"}) {
        host.missing = {export_};
        host.calls.clear();
        basket.Initialise({});
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
        int focus = IDC_VALUE;
    };
    const Row rows[] = {
        {"", "", "", false, "nse_cm|", "Enter Token", IDC_SYMBOL},
        {"", "", "", false, "", "Please select the ClientID", IDC_CLIENT_SEARCH},
        {"C001", "", "", false, "", "Enter a Month.", IDC_PERIOD},
        {"C001", "", "61", false, "", "Month Should be Between 1 and 60", IDC_PERIOD},
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
        basket.Entry().AddOrModify();
        EXPECT_EQ(Taken(view.boxes), Texts{row.refusal});
        EXPECT_EQ(view.focused, row.byQuantity ? IDC_BASKET_QUANTITY : row.focus) << row.refusal;
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
    EXPECT_EQ(Rows(BasketField::account), "C3 C2 C1");
    EXPECT_EQ(Rows(BasketField::amount), " 50 150000");
    EXPECT_EQ(Rows(BasketField::quantity), "7  ");
    EXPECT_EQ(Rows(BasketField::sideWord), "SELL BUY BUY");
    EXPECT_EQ(Rows(BasketField::startDateText), "05/Mar/2027 05/Mar/2027 05/Mar/2027");
    EXPECT_EQ(Serials(), "3 2 1 ");
    EXPECT_EQ(basket.Outcome().Status(), (std::vector<std::string>{"Rows: 3", "SIP: amount 1500.50, quantity 0",
                                                                   "SWP: amount 0.00, quantity 7", ""}));

    basket.Entry().Activate(view.list.rows[1]);
    EXPECT_EQ(view.Text(IDC_SUBMIT) + view.Text(IDC_CLIENT_SEARCH) + view.Text(IDC_VALUE), "&ModifyC20.50");
    EXPECT_EQ(view.Text(IDC_ACTION) + view.Text(IDC_INVEST_BY), "SIPAmount");
    view.SetText(IDC_VALUE, "60");
    view.list.selected = {view.list.rows[1]};
    basket.Entry().AddOrModify();
    EXPECT_EQ(Rows(BasketField::amount), " 6000 150000");
    EXPECT_EQ(Serials(), "3 4 1 ") << "an answer to the earlier order no longer finds it";
    EXPECT_EQ(view.Text(IDC_SUBMIT) + view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "Add");

    // Of several selected rows, in whatever order a sort left them, the one that the form was filled from.
    basket.Entry().Activate(view.list.rows[1]);
    view.SetText(IDC_VALUE, "70");
    view.list.selected = {view.list.rows[2], view.list.rows[1]};
    basket.Entry().AddOrModify();
    EXPECT_EQ(Rows(BasketField::amount), " 7000 150000");

    // Another row was selected since: it is not replaced without a question.
    basket.Entry().Activate(view.list.rows[1]);
    view.list.selected = {view.list.rows[0]};
    const std::string before = Rows(BasketField::account) + Serials();
    view.yes = false;
    basket.Entry().AddOrModify();
    EXPECT_EQ(Taken(view.questions).size(), 1u);
    EXPECT_EQ(Rows(BasketField::account) + Serials(), before);
    EXPECT_EQ(view.Text(IDC_SUBMIT), "&Modify");
    view.yes = true;

    // The row that was to be modified is gone: another that is selected is not taken for it without a question.
    basket.Entry().Activate(view.list.rows[1]);
    view.list.selected = {view.list.rows[1]};
    basket.Delete();
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");
    view.list.selected = {view.list.rows[1]};
    view.yes = false;
    basket.Entry().AddOrModify();
    EXPECT_EQ(Taken(view.questions).size(), 1u);
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");
    view.yes = true;
    view.list.selected.clear();
    basket.Entry().AddOrModify();
    EXPECT_EQ(Taken(view.boxes), Texts{"Order Not Found"});
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");

    // What the form cannot show is told, and the button adds, also when it modified before.
    basket.Entry().Activate(view.list.rows[1]);
    EXPECT_EQ(view.Text(IDC_SUBMIT), "&Modify");
    view.controls[IDC_SYMBOL].items = {"BYTEFIN"};
    view.controls[IDC_PRODUCT].items = {};
    basket.Entry().Activate(view.list.rows[0]);
    EXPECT_EQ(Taken(view.boxes), (Texts{"Failed to Load", "Failed to Load"}));
    EXPECT_EQ(view.Text(IDC_SUBMIT), "Add");
}

TEST_F(BasketDialogTest, AScripIsKnownByItsExchangeToo) {
    Open();
    host.scrips.push_back({"bse_cm", "EQ", "ARBORTEX", "599", "ARBORTEX-EQ", "Arbor Textiles"});
    std::string other = Line("C2", "599");
    other.replace(other.find("nse_cm"), 6, "bse_cm");
    Load(Line("C1") + other);
    EXPECT_EQ(Rows(BasketField::token), "599 1013");
}

TEST_F(BasketDialogTest, EveryFieldOfARowComesIntoTheForm) {
    host.rights.insert("QV: Planfold: Custom");
    view.controls[IDC_SYMBOL].items = {"LUMENBANK", "INFOCAR"};
    Open("MIS");
    Load("C7,nse_cm,BE,LUMENBANK,2902,LUMENBANK-BE,CNC,12345,,daily,,06/Apr/2027,12,MKT,B,,,,value,\n"
         "C8,bse_cm,EQ,INFOCAR,500100,INFOCAR,MIS,,9,weekly,,07/May/2028,13,MKT,S,,,,qty,\n");
    const char* const shown[] = {"BSE EQ INFOCAR SWP MARKET MIS Quantity  9 weekly 13 C8 07/May/2028",
                                 "NSE BE LUMENBANK SIP MARKET CNC Amount 123.45  daily 12 C7 06/Apr/2027"};
    for (std::size_t row : {0, 1}) {
        basket.Entry().Activate(view.list.rows.at(row));
        std::string form;
        for (const int id :
             {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_ACTION, IDC_ORDER_TYPE, IDC_PRODUCT, IDC_INVEST_BY,
              IDC_VALUE, IDC_BASKET_QUANTITY, IDC_FREQUENCY, IDC_PERIOD, IDC_CLIENT_SEARCH})
            form += view.Text(id) + " ";
        EXPECT_EQ(form + FormatPickerDate(view.date), shown[row]);
        EXPECT_EQ(view.controls[IDC_VALUE].enabled, row == 1);
    }
    // A host that tells no names of scrips takes none back.
    session.host.pu_get_intersted_scrip_field = {};
    basket.Entry().Activate(view.list.rows[1]);
    EXPECT_EQ(view.Text(IDC_SYMBOL), "LUMENBANK");
}

TEST_F(BasketDialogTest, TheFormAddsOnlyWhatItShows) {
    Open();
    const std::pair<int, const char*> choices[] = {
        {IDC_EXCHANGE, "InValid Token"},         {IDC_SERIES, "InValid Token"},
        {IDC_SYMBOL, "InValid Token"},           {IDC_ACTION, "InValid Action Type."},
        {IDC_INVEST_BY, "InValid Invest Type."}, {IDC_FREQUENCY, "InValid Frequency."},
        {IDC_ORDER_TYPE, "InValid Order Type"},  {IDC_PRODUCT, "InValid Product"},
    };
    Fill();
    for (const auto& [combo, refusal] : choices) {
        const int before = std::exchange(view.controls[combo].selected, -1);
        basket.Entry().AddOrModify();
        EXPECT_EQ(Taken(view.boxes), Texts{refusal});
        EXPECT_EQ(view.focused, combo);
        view.controls[combo].selected = before;
    }
    view.SetText(IDC_PERIOD, "1,2");
    basket.Entry().AddOrModify();
    EXPECT_EQ(Taken(view.boxes), Texts{"Invalid Period"});
    EXPECT_TRUE(view.list.rows.empty());

    // The scrip of a file's row is the one that is sent, whatever the file calls it.
    Load("C1,nse_cm,EQ,BYTEFIN,1013,ARBORTEX-EQ,CNC,150000,,daily,,05/Mar/2027,12,MKT,B,,,,value,\n");
    basket.Entry().Activate(view.list.rows[0]);
    EXPECT_EQ(Taken(view.boxes), Texts{"Failed to Load"});
    EXPECT_EQ(view.Text(IDC_SYMBOL) + view.Text(IDC_SUBMIT), "Add");
}

TEST_F(BasketDialogTest, ARejectedLineIsCorrectedInTheForm) {
    const struct {
        const char *from, *to; // in the line
        bool byQuantity;
        std::size_t failed;
        int control;
        const char* shown;
        const char* refusal; // none: it is added
    } cases[] = {
        {",CNC,", ",XYZ,", false, 1, IDC_PRODUCT, "", "InValid Product"},
        {",CNC,", ",XYZ,", true, 1, IDC_BASKET_QUANTITY, "7", "InValid Product"},
        {",B,", ",X,", false, 1, IDC_ACTION, "", "InValid Action Type."},
        {",monthly,", ",hourly,", false, 1, IDC_FREQUENCY, "", "InValid Frequency."},
        {",12,", ",12a,", false, 0, IDC_PERIOD, "12a", "Invalid Period"},
        {"05/Mar/2027", "05/Mars/2027", false, 1, 0, "", "Start Date Cannot be less that today's Date"},
        {",150000,", ",-5,", false, 1, IDC_VALUE, "", "Enter Amount"},
        {",150000,", ",five,", false, 1, IDC_VALUE, "", "Enter Amount"},
        {",150000,", ",9999999999999999,", false, 1, IDC_VALUE, "", "Enter Amount"},
        {",7,", ",7x,", true, 1, IDC_BASKET_QUANTITY, "", "Enter Quantity"},
        {",7,", ",7x,", false, 0, IDC_BASKET_QUANTITY, "", nullptr},
        {",150000,", ",150000.4,", false, 0, IDC_VALUE, "1500.00", nullptr},
        {",9,", ",0,", false, 0, IDC_SYMBOL, "ARBORTEX", nullptr},
    };
    Open();
    for (const auto& each : cases) {
        std::string line = Line("C1", "9", each.byQuantity ? "qty" : "value");
        line.replace(line.find(each.from), std::strlen(each.from), each.to);
        Load(Line("C2", "9") + line + "x\n");
        Taken(view.boxes);
        view.date = {2031, 5, 6};
        basket.Entry().ActivateRejected(1);
        EXPECT_EQ(Taken(view.boxes), Texts(each.failed, "Failed to Load")) << line;
        EXPECT_EQ(view.Text(each.control), each.shown) << line;
        basket.Entry().AddOrModify();
        EXPECT_EQ(Taken(view.boxes), each.refusal ? Texts{each.refusal} : Texts{}) << line;
        EXPECT_EQ(basket.Rejected().size(), each.refusal ? 3u : 2u) << line;
    }
    // Only the line that was brought into the form, and only once.
    basket.Entry().AddOrModify();
    EXPECT_EQ(basket.Rejected().size(), 2u);
    basket.Entry().ActivateRejected(0);
    basket.Entry().Activate(view.list.rows[0]);
    view.list.selected = {view.list.rows[0]};
    basket.Entry().AddOrModify();
    Add("C3");
    EXPECT_EQ(Rows(BasketField::account), "C3 C1 C1");
    basket.Saving().SaveRejected();
    EXPECT_EQ(view.files["basket.csv"], Line("C2", "9") + "x\n");

    // A line of the file before is none of the next one's.
    basket.Entry().ActivateRejected(0);
    Load(Line("C2", "9") + "x\n");
    Add("C4");
    EXPECT_EQ(basket.Rejected().size(), 2u);
    Taken(view.boxes);

    // The server's frequencies come late: the line's own is chosen.
    basket.OnClosed();
    view.ClearItems(IDC_FREQUENCY);
    basket.Initialise({});
    basket.Entry().ActivateRejected(0);
    EXPECT_EQ(Taken(view.boxes), Texts{"Failed to Load"});
    Answer("echoedRequest=get_sip_operation_mode errorCode=5");
    EXPECT_EQ(view.Text(IDC_FREQUENCY), "monthly");
}

TEST_F(BasketDialogTest, AFileBecomesRowsAndRejectedLines) {
    Open();
    Add("OLD");
    Load(Line("C1") + Line("C2", "9") + "x\n" + Line("C3"));
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");
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

    basket.Saving().SaveRejected();
    EXPECT_EQ(view.files["basket.csv"], Line("C2", "9") + "x\n");
    basket.Entry().ActivateRejected(0);
    EXPECT_EQ(view.Text(IDC_CLIENT_SEARCH) + view.Text(IDC_SUBMIT), "C2Add");
    basket.Entry().ActivateRejected(1);
    EXPECT_EQ(Taken(view.boxes), Texts{"The line does not have the columns of a basket file."});

    // Nothing is changed by a file that is not there or is no text, or when none is chosen.
    view.path = "missing.csv";
    basket.Runs().Load();
    EXPECT_EQ(Taken(view.boxes), Texts{"File Open Error"});
    view.files["missing.csv"] = "\xFF\xFE";
    basket.Runs().Load();
    EXPECT_EQ(Taken(view.boxes), Texts{"The basket cannot be read: it is UTF-16 text; save it as ANSI or UTF-8 "
                                       "text and load it again."});
    view.path.reset();
    basket.Runs().Load();
    EXPECT_EQ(Rows(BasketField::account), "C3 C1");

    // Midnight passes while the dealer looks for the file: tomorrow has become today.
    view.path = "basket.csv";
    view.now = {2027, 3, 4, 23, 59, 59};
    view.duringLoadQuestion = [&] { view.now = {2027, 3, 5, 0, 0, 1}; };
    Load(Line("C1"));
    EXPECT_EQ(Taken(view.boxes), Texts{"Invalid Date"});
    view.now = {2027, 3, 4, 23, 59, 59};
    Load("");
    EXPECT_EQ(view.boxes, Texts{});
    EXPECT_TRUE(view.list.rows.empty() && basket.Rejected().empty());

    // What is saved of a rejected line is complete, and reads as the same line again.
    const std::string cut("x\0,y", 4);
    Load("\xEF\xBB\xBF" + cut + "\nz");
    EXPECT_EQ(basket.Rejected()[0].report, "x\nfailed to load due to Invalid Format");
    basket.Saving().SaveRejected();
    EXPECT_EQ(view.files["basket.csv"], cut + "\nz\n");
    Taken(view.boxes);

    // Frequencies that the server does not list are told at once, each line.
    Answer("echoedRequest=get_sip_operation_mode frequency=yearly minimumPeriods=2");
    view.controls[IDC_FREQUENCY].items = {"yearly"};
    Load(Line("C1") + Line("C2"));
    EXPECT_EQ(Taken(view.boxes), Texts{"monthly Frequency not set\nmonthly Frequency not set"});
    EXPECT_EQ(basket.Rejected()[1].reason, "monthly Frequency not set");
}

TEST_F(BasketDialogTest, AnswersFindTheirRowBySerialNumber) {
    Open();
    Load(Line("C1") + Line("C2"));
    struct Row {
        Fields answer;
        const char* remarks;
    };
    const std::string name = "echoedRequest=add_sip_orders ";
    const Row rows[] = {
        {name + "echoedNumber=1 userText=registered", "NA registered"},
        {name + "echoedNumber=2", " registered"},
        {name + "echoedNumber=3 userText=x", " registered"},
        {name + "echoedNumber=0 userText=x", " registered"},
        {name + "echoedNumber=-1 userText=x", " registered"},
        {name + "echoedNumber=99999999999 userText=x", " registered"},
        {name + "userText=x", " registered"},
        {name + "echoedNumber=2 userText=x errorCode=17", " registered"},
    };
    host.log.clear();
    for (const Row& row : rows) {
        Answer(row.answer);
        EXPECT_EQ(Rows(BasketField::userText), row.remarks);
    }
    EXPECT_EQ(host.log, Texts{"Error in response : add_sip_orders . Error Code : 17"});
    // The number of a row that has gone belongs to nobody.
    view.list.selected = {view.list.rows[0]};
    basket.Delete();
    Add("C9");
    Answer(name + "echoedNumber=2 userText=late");
    EXPECT_EQ(Rows(BasketField::userText), "NA registered");
}

TEST_F(BasketDialogTest, ExportWritesEveryRowAndLoadsAgain) {
    Open();
    basket.Saving().Export();
    EXPECT_EQ(Taken(view.boxes), Texts{"No items in the list"});
    Load(Line("C1") + Line("C2"));
    view.list.hidden = 2;
    EXPECT_EQ(basket.Outcome().Status()[0], "Rows: 2 (2 hidden)");
    basket.Saving().Export();
    EXPECT_EQ(Taken(view.boxes), Texts{"Exported to File Successfully"});
    basket.Runs().Load();
    EXPECT_EQ(Rows(BasketField::account), "C1 C2");
    view.writable = false;
    basket.Saving().Export();
    EXPECT_EQ(view.boxes, Texts{" Basket File Write Error: File Open Error"});
}

TEST_F(BasketDialogTest, RowsThatStandTwiceAreMarked) {
    Open();
    Load(Line("C1") + Line("C2") + Line("C1") + Line("C1"));
    EXPECT_EQ(basket.Outcome().Status()[3], "Duplicates: 3");
    EXPECT_TRUE(basket.Rows().StandsTwice(view.list.rows[0]));
    EXPECT_FALSE(basket.Rows().StandsTwice(view.list.rows[2]));
    for (const char* left : {"Duplicates: 2", ""}) {
        view.list.selected = {view.list.rows[0]};
        basket.Delete();
        EXPECT_EQ(basket.Outcome().Status()[3], left);
    }
}

} // namespace
} // namespace planfold::test

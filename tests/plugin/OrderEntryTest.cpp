// The order entry form: first contents, changes, Submit and answers, without a window.
#include "tests/plugin/OrderEntryStage.h"

#include <sstream>

namespace planfold::test {
namespace {

const Fields kMonthlyYearly("echoedRequest=get_sip_operation_mode frequency=monthly,yearly minimumPeriods=6,2");

TEST_F(OrderEntryTest, CustomProductsNeedTheRightAndAKnownName) {
    struct Row {
        bool right;
        const char* setting;
        Texts products;
    };
    const Row rows[] = {
        {false, "MIS,NRML", {"CNC"}},
        {true, "NRML,MIS", {"CNC", "NRML", "MIS"}},
        {true, "CNC,MIS,XYZ, NRML,mis", {"CNC", "MIS"}},
        {true, "", {"CNC"}},
        {true, ",,", {"CNC"}},
        {true, "Settings not found", {"CNC"}},
    };
    for (const Row& row : rows) {
        host.rights = {"QV: Planfold"};
        if (row.right) host.rights.insert("QV: Planfold: Custom");
        view.controls[IDC_PRODUCT] = {};
        Open(row.setting);
        EXPECT_EQ(Items(IDC_PRODUCT), row.products) << row.setting;
    }
}

TEST_F(OrderEntryTest, TheHostIsToldWhereClientsAreSearched) {
    for (const bool searches : {false, true}) {
        if (!searches) session.host.pu_get_entered_text_results = nullptr;
        Open();
        EXPECT_EQ(host.settings.count("Client_Search/Planfold Order Entry"), searches ? 1u : 0u);
        session.host = ResolveHostCallbacks(session.lookup);
    }
}

TEST_F(OrderEntryTest, SwitchingInvestByClearsTheValue) {
    Open();
    for (const int selected : {1, 0, 1}) {
        view.SetText(IDC_VALUE, "12.5");
        view.Select(IDC_INVEST_BY, selected);
        entry.Form().OnInvestTypeChanged();
        EXPECT_EQ(view.Text(IDC_VALUE), "");
        EXPECT_EQ(view.Text(IDC_VALUE_LABEL), selected ? "Quantity" : "Amount");
        EXPECT_EQ(view.controls[IDC_VALUE].digitsOnly, selected == 1);
    }
}

TEST_F(OrderEntryTest, SubmitSendsAndClearsValueAndPeriod) {
    Open();
    Answer(kMonthlyYearly);
    Type("1500", "6", "C002");
    entry.Submit(kNow);
    ASSERT_EQ(host.requests.size(), 2u);
    EXPECT_NE(host.requests[1].find("account=C002"), std::string::npos) << host.requests[1];
    EXPECT_NE(host.requests[1].find("amountOrQuantity=150000 frequency=monthly"), std::string::npos)
        << host.requests[1];
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");

    // Pressed again while the host asks: one order.
    Type("1500", "6", "C002");
    host.duringCaution = [&] { entry.Submit(kNow); };
    entry.Submit(kNow);
    EXPECT_EQ(host.requests.size(), 3u);

    // Cleared also when sending fails: the text says so.
    Type("1500", "6", "C002");
    host.refuses = true;
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes, Texts{"Sending Request add_sip_orders Failed"});
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");
}

TEST_F(OrderEntryTest, ARefusedSubmitKeepsWhatWasTyped) {
    Open();
    view.SetText(IDC_VALUE, "abc");
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes, Texts{"Enter valid Amount"});
    EXPECT_EQ(view.Text(IDC_VALUE), "abc");
    EXPECT_EQ(view.Text(IDC_PERIOD), "1");
    EXPECT_EQ(view.focused, IDC_VALUE);
    view.SetText(IDC_PERIOD, "0");
    entry.Submit(kNow);
    EXPECT_EQ(view.focused, IDC_PERIOD);
    view.date = {2020, 1, 1};
    entry.Submit(kNow);
    EXPECT_EQ(view.focused, IDC_START_DATE);
    EXPECT_EQ(host.requests.size(), 1u);
}

TEST_F(OrderEntryTest, ThePlanFollowsTheForm) {
    Open();
    EXPECT_EQ(view.summary, "Arbor Textiles");
    EXPECT_FALSE(view.controls[IDC_PLAN_DATES].enabled) << "no frequency yet";
    Answer(kMonthlyYearly);
    EXPECT_EQ(view.summary, "Arbor Textiles\n1 planned from 01-Feb-2027 to 01-Feb-2027");
    EXPECT_TRUE(view.controls[IDC_PLAN_DATES].enabled);
    view.SetText(IDC_PERIOD, "12");
    for (const auto& [value, total] :
         {std::pair{"100.51", "\nTotal outlay Rs 1,206.12"}, {"10000000", ""}, {"", ""}}) {
        view.SetText(IDC_VALUE, value);
        EXPECT_TRUE(entry.Form().ShowPlan());
        EXPECT_EQ(view.summary,
                  std::string("Arbor Textiles\n12 planned from 01-Feb-2027 to 01-Jan-2028") + total);
    }
}

TEST_F(OrderEntryTest, TheSummaryNamesWhatStandsBehindTheCodes) {
    struct Row {
        const char* client;
        const char* lacking; // of the host's exports
        const char* summary;
        bool alarms;
    };
    const char* valid = "pu_is_valid_account";
    const char* name = "pu_get_client_name";
    const Row rows[] = {
        {"", "", "Arbor Textiles", false},
        {"C002", "", "Arbor Textiles for C002 (Second Client)", false},
        {"C003", "", "Arbor Textiles for C003 (unknown client)", true},
        {"C003", valid, "Arbor Textiles for C003 (unknown client)", true},
        {"C002", name, "Arbor Textiles for C002", false},
        {"C002", "pu_get_intersted_scrip_field", "For C002 (Second Client)", false},
    };
    for (const Row& row : rows) {
        host.missing = {row.lacking};
        session.host = ResolveHostCallbacks(session.lookup);
        Open();
        view.SetText(IDC_CLIENT_SEARCH, row.client);
        EXPECT_TRUE(entry.Form().ShowPlan());
        EXPECT_EQ(view.summary, row.summary) << row.lacking;
        EXPECT_EQ(view.alarms, row.alarms) << row.summary;
    }
    host.calls.clear();
    EXPECT_TRUE(entry.Form().ShowPlan());
    EXPECT_EQ(host.calls, Texts{}) << "the host is asked when something changes";
    view.controls[IDC_SYMBOL].items[0] = "NOSCRIP";
    EXPECT_TRUE(entry.Form().ShowPlan());
    EXPECT_EQ(view.summary, "For C002 (Second Client)") << "and no other's name stays";
}

TEST_F(OrderEntryTest, AnOrderForAnUnknownClientIsAskedAbout) {
    struct Row {
        const char* client;
        bool hostTells, yes;
        const char* question; // empty: none
        std::size_t sent;
    };
    const char* unknown = "The terminal knows no client C003.\nPlace the order all the same?";
    const Row rows[] = {
        {"C002", true, false, "", 1},
        {"C003", true, false, unknown, 0},
        {"C003", true, true, unknown, 1},
        {"", true, false, "The order names no client.\nPlace the order all the same?", 0},
        {"C004", false, false, "", 1},
    };
    for (const Row& row : rows) {
        host.missing.clear();
        if (!row.hostTells) host.missing.insert("pu_is_valid_account");
        session.host = ResolveHostCallbacks(session.lookup);
        Open();
        Type("1500", "6", row.client);
        view.yes = row.yes;
        view.focused = 0;
        view.questions.clear();
        host.requests.clear();
        entry.Submit(kNow);
        EXPECT_EQ(view.questions, *row.question ? Texts{row.question} : Texts{});
        EXPECT_EQ(host.requests.size(), row.sent) << row.client;
        EXPECT_EQ(view.Text(IDC_VALUE), row.sent ? "" : "1500") << row.client;
        EXPECT_EQ(view.focused, row.sent ? 0 : IDC_CLIENT_SEARCH);
    }
    host.missing.clear();
    session.host = ResolveHostCallbacks(session.lookup);
    view.yes = true;
    for (const bool changed : {true, false}) {
        Type("1600", "6", "C003");
        view.otherBox = true;
        view.questions.clear();
        host.requests.clear();
        entry.Submit(kNow);
        EXPECT_TRUE(view.questions.empty() && host.requests.empty());
        if (changed) Type("1501", "6", "C002");
        view.otherBox = false;
        for (int i = 0; i < 2; ++i)
            entry.OnBoxGone(kNow);
        EXPECT_EQ(view.questions, changed ? Texts{} : Texts{unknown});
        EXPECT_EQ(host.requests.size(), changed ? 0u : 1u) << "what is no longer shown is not sent";
    }
    view.duringQuestion = [&] { Open(); };
    Type("1500", "6", "C003");
    entry.Submit(kNow);
    EXPECT_EQ(host.LastRequest(), "get_sip_operation_mode") << "that window is gone";
}

TEST_F(OrderEntryTest, AWindowOpenedAgainBeforeTheAnswerListsTheFrequenciesOnce) {
    Open();
    Open();
    Answer(kMonthlyYearly);
    Answer(kMonthlyYearly);
    EXPECT_EQ(view.Items(IDC_FREQUENCY), (Texts{"monthly", "yearly"}));
}

// Each step: an order typed and sent ("C001 100"), its answer ("ok", "no"), F3, or an order typed and not sent
// ("type C002 7"); and what then stands in the form, and of the summary.
TEST_F(OrderEntryTest, RefusedOrdersComeBackInTurnAndNothingTypedIsLost) {
    struct Step {
        const char* does;
        const char* form; // client, value
        const char* notice;
    };
    const char* sentOne = "Refused: no (code 104). F3 brings the order back (C001 ARBORTEX 100).";
    const char* aside = "An order is set aside. F3 brings the order back (C002 ARBORTEX 7).";
    const Step steps[] = {
        {"F3", " ", ""},
        {"C001 100", "C001 ", ""},
        {"no", "C001 ", sentOne},
        {"type C002 7", "C002 7", sentOne},
        {"F3", "C001 100", aside},
        {"F3", "C002 7", "An order is set aside. F3 brings the order back (C001 ARBORTEX 100)."},
        {"F3", "C001 100", aside},
        {"C001 150", "C001 ", aside},
        {"ok", "C001 ", aside},
        {"F3", "C002 7", ""},
        {"C002 8", "C002 ", ""},
        {"C002 9", "C002 ", ""},
        {"no", "C002 ",
         "Refused: no (code 104). 1 more wait for an answer. F3 brings the order back (C002 ARBORTEX 8)."},
        {"no", "C002 ", "Refused: no (code 104). F3 brings the order back (C002 ARBORTEX 9). 1 more are kept."},
        {"F3", "C002 9",
         "Refused: no (code 104). 1 more wait for an answer. F3 brings the order back (C002 "
         "ARBORTEX 8)."},
        {"C002 9", "C002 ", "Refused"},
        {"wait", "C002 ", "Refused"},
        {"C001 5", "C001 ", "Refused"},
        {"no", "C001 ", "Refused: no (code 104). F3 brings the order back (C001 ARBORTEX 5). 1 more are kept."},
        {"C002 70", "C002 ", "Refused"},
        {"stray", "C002 ",
         "Refused: no (code 104). F3 brings an earlier order back (C001 ARBORTEX 5). 1 more are kept."},
        {"C001 6", "C001 ",
         "Refused: no (code 104). F3 brings the order back (C001 ARBORTEX 5). 1 more are kept."},
    };
    Open();
    Answer(kMonthlyYearly);
    for (const Step& step : steps) {
        SCOPED_TRACE(step.does);
        const std::string does = step.does;
        std::istringstream words(does);
        std::string client, value;
        words >> client;
        if (client == "type") words >> client;
        words >> value;
        if (does == "F3")
            EXPECT_EQ(entry.BringBack(), step.form != std::string_view(" "));
        else if (does == "no")
            Answer("echoedRequest=add_sip_orders errorCode=104 userText=no");
        else if (does == "ok")
            Answer("echoedRequest=add_sip_orders userText=registered account=C001");
        else if (does == "stray")
            Answer("echoedRequest=add_sip_orders errorCode=104 userText=no account=C404");
        else if (does == "wait")
            view.now += 11'000;
        else
            Type(value, "6", client);
        if (!value.empty() && !does.starts_with("type")) entry.Submit(kNow);
        EXPECT_EQ(view.Text(IDC_CLIENT_SEARCH) + " " + view.Text(IDC_VALUE), step.form);
        const std::string notice = *step.notice ? std::string("\n") + step.notice : "";
        EXPECT_TRUE(entry.Form().ShowPlan());
        EXPECT_NE(view.summary.find(notice), std::string::npos) << view.summary;
        EXPECT_TRUE(*step.notice || view.summary.find("F3") == std::string::npos) << view.summary;
        EXPECT_EQ(view.alarms, notice.find("Refused") != std::string::npos);
    }
}

TEST_F(OrderEntryTest, AnOrderComesBackAsItWasTyped) {
    host.rights.insert("QV: Planfold: Custom");
    Open("MIS");
    Answer(kMonthlyYearly);
    Type("15", "7", "C002");
    for (const auto& [combo, text] : {std::pair(IDC_EXCHANGE, "BSE"),
                                      {IDC_SERIES, "BE"},
                                      {IDC_SYMBOL, "BETA"},
                                      {IDC_ACTION, "SWP"},
                                      {IDC_PRODUCT, "MIS"},
                                      {IDC_FREQUENCY, "yearly"},
                                      {IDC_INVEST_BY, "Quantity"}})
        ASSERT_TRUE(view.SelectText(combo, text)) << text;
    view.date = {2027, 3, 5};
    const auto shown = [&] {
        std::string text = FormatPickerDate(view.date);
        for (const int id : {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_ACTION, IDC_PRODUCT, IDC_FREQUENCY,
                             IDC_INVEST_BY, IDC_VALUE, IDC_PERIOD, IDC_CLIENT_SEARCH})
            text += " " + view.Text(id);
        return text;
    };
    const std::string typed = shown();
    EXPECT_EQ(typed, "05/Mar/2027 BSE BE BETA SWP MIS yearly Quantity 15 7 C002");
    host.refuses = true; // not sent is as bad as refused
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes, Texts{"Sending Request add_sip_orders Failed"});
    Open(); // anew, without the product
    EXPECT_NE(view.summary.find("Not sent: Sending Request add_sip_orders Failed. F3 brings"),
              std::string::npos)
        << view.summary;
    view.controls[IDC_PRODUCT].items = {"CNC"};
    for (const int combo : {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_ACTION, IDC_PRODUCT})
        view.Select(combo, 0);
    view.controls[IDC_FREQUENCY] = {}; // its list is still on its way
    ASSERT_TRUE(entry.BringBack());
    EXPECT_TRUE(view.controls[IDC_VALUE].digitsOnly);
    EXPECT_EQ(view.Text(IDC_PRODUCT), "") << "no other product stands for it";
    view.controls[IDC_PRODUCT].items = {"CNC", "MIS"};
    view.SelectText(IDC_PRODUCT, "MIS");
    Answer(kMonthlyYearly);
    EXPECT_EQ(shown(), typed);
    EXPECT_EQ(view.focused, IDC_VALUE);
}

TEST_F(OrderEntryTest, AnswersAreShownErrorsLogged) {
    Answer({{tag::echoedRequest, {"add_sip_orders"}},
            {tag::userText, {"SIP registered: 17"}},
            {tag::account, {"C001"}}});
    EXPECT_EQ(view.boxes, Texts{"SIP registered: 17"});
    Answer("echoedRequest=add_sip_orders errorCode=55 userText=no");
    Answer("echoedRequest=modify_sip_order errorCode=56");
    EXPECT_EQ(host.log, (Texts{"Error in response : add_sip_orders . Error Code : 55",
                               "Error in response : modify_sip_order . Error Code : 56"}));
    EXPECT_EQ(view.boxes.size(), 1u);
    EXPECT_FALSE(view.closed);
    EXPECT_EQ(view.summary, "Refused: no (code 55).") << "of no order that is known";
    Answer("echoedRequest=modify_sip_order userText=modified");
    EXPECT_EQ(view.boxes.back(), "modified");
    EXPECT_FALSE(view.closed) << "nothing was being modified";
}

} // namespace
} // namespace planfold::test

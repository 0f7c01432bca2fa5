// The order entry form: first contents, changes, Submit and answers, without a window.

#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

class OrderEntryTest : public ::testing::Test {
protected:
    void SetUp() override {
        session.host = ResolveHostCallbacks(session.lookup);
        session.OpenHandles(view);
        view.controls[IDC_SERIES].items = {"BE", "EQ"};
        view.controls[IDC_SYMBOL].items = {"ALPHA", "BETA"};
        view.controls[IDC_CLIENT_COMBO].items = {"C001", "C002"};
        view.controls[IDC_HOST_PRODUCTS].items = {"CNC", "MIS", "NRML"};
    }

    void Open(std::string_view customProducts = {}) { entry.Initialise(kNow, customProducts); }
    void Answer(const std::vector<Received::Field>& fields) { entry.OnResponse(Received(fields).Message()); }
    std::vector<std::string> Items(int combo) const { return view.controls[combo].items; }

    HostDouble host;
    DialogDouble view;
    RecordingControl control;
    Session session{host.Lookup(), host.IdentityStrings(), host.strings};
    OrderEntry entry{session, view, &control};
};

const std::vector<Received::Field> kMonthlyYearly{
    {32767, {"get_sip_operation_mode"}}, {10012, {"monthly", "yearly"}}, {54101, {"6", "2"}}};

TEST_F(OrderEntryTest, OpensWithItsFirstContents) {
    session.m_nSipOperationMode = 1;
    Open();
    const std::pair<int, const char*> texts[] = {
        {IDC_EXCHANGE, "NSE"}, {IDC_SERIES, "EQ"},          {IDC_SYMBOL, "ALPHA"},     {IDC_ACTION, "SIP"},
        {IDC_PRODUCT, "CNC"},  {IDC_ORDER_TYPE, "MARKET"},  {IDC_INVEST_BY, "Amount"}, {IDC_PERIOD, "1"},
        {IDC_VALUE, ""},       {IDC_VALUE_LABEL, "Amount"}, {IDC_FREQUENCY, ""},       {IDC_CLIENT_SEARCH, ""},
    };
    for (const auto& [id, text] : texts)
        EXPECT_EQ(view.Text(id), text) << id;
    EXPECT_EQ(Items(IDC_EXCHANGE), (std::vector<std::string>{"NSE", "BSE"}));
    EXPECT_EQ(Items(IDC_ACTION), (std::vector<std::string>{"SIP", "SWP"}));
    EXPECT_EQ(Items(IDC_INVEST_BY), (std::vector<std::string>{"Amount", "Quantity"}));
    EXPECT_EQ(FormatPickerDate(view.date), "01/Feb/2027");
    EXPECT_EQ(view.date.hour, 15);
    EXPECT_EQ(session.m_nSipOperationMode, 0);
    EXPECT_EQ(host.scripFills, std::vector<int>{0});
    EXPECT_EQ(control.sent, std::vector<std::string>{"0=get_sip_operation_mode"});
    EXPECT_EQ(host.settings["Client_Search/Planfold Order Entry"], "1");
    EXPECT_TRUE(view.boxes.empty());
}

TEST_F(OrderEntryTest, TheClientComesFromTheSearchBoxOrTheCombo) {
    for (const bool search : {true, false}) {
        if (!search) session.host.pu_get_entered_text_results = nullptr;
        control.sent.clear();
        Open();
        EXPECT_EQ(view.controls[IDC_CLIENT_SEARCH].shown, search);
        EXPECT_EQ(view.controls[IDC_CLIENT_SEARCH_MODE].shown, search);
        EXPECT_EQ(view.controls[IDC_CLIENT_COMBO].shown, !search);
        view.SetText(IDC_CLIENT_SEARCH, "typed");
        view.SetText(IDC_VALUE, "1500");
        entry.Submit(kNow);
        EXPECT_NE(control.sent.back().find(search ? "54001=typed" : "54001=C001"), std::string::npos)
            << control.sent.back();
    }
}

TEST_F(OrderEntryTest, CustomProductsNeedTheRightAndAKnownName) {
    struct Row {
        bool right;
        const char* setting;
        std::vector<std::string> products;
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

TEST_F(OrderEntryTest, SwitchingInvestByClearsTheValue) {
    Open();
    for (const int selected : {1, 0, 1}) {
        view.SetText(IDC_VALUE, "12.5");
        view.Select(IDC_INVEST_BY, selected);
        entry.OnInvestTypeChanged();
        EXPECT_EQ(view.Text(IDC_VALUE), "");
        EXPECT_EQ(view.Text(IDC_VALUE_LABEL), selected ? "Quantity" : "Amount");
        EXPECT_EQ(view.controls[IDC_VALUE].digitsOnly, selected == 1);
    }
}

TEST_F(OrderEntryTest, ScripsFollowExchangeAndSeries) {
    Open();
    entry.OnSeriesChanged();
    entry.OnExchangeChanged();
    EXPECT_EQ(host.scripFills, (std::vector<int>{0, 1, 0}));
    EXPECT_EQ(view.Text(IDC_SYMBOL), "ALPHA");
    view.controls[IDC_SERIES] = {.text = {}, .items = {"A", "B"}};
    entry.OnExchangeChanged();
    EXPECT_EQ(view.Text(IDC_SERIES), "A"); // no "EQ" there
}

TEST_F(OrderEntryTest, TheServersPeriodsChangeListLabelAndHint) {
    Open();
    Answer(kMonthlyYearly);
    EXPECT_EQ(Items(IDC_FREQUENCY), (std::vector<std::string>{"monthly", "yearly"}));
    EXPECT_EQ(view.Text(IDC_FREQUENCY), "monthly");
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "SIP Periods");
    for (const int id : {IDC_PERIOD_HINT, IDC_PERIOD_ICON_1, IDC_PERIOD_ICON_2})
        EXPECT_FALSE(view.controls[id].shown) << id;
    EXPECT_EQ(session.m_nSipOperationMode, 1);
    EXPECT_EQ(session.m_dMinSipMonthly, 6);
    EXPECT_EQ(session.m_dMinSipYearly, 2);
}

TEST_F(OrderEntryTest, WithoutAListTheDefaultsStandAndNothingElseChanges) {
    Open();
    Answer({{32767, {"get_sip_operation_mode"}}, {32766, {"9"}}});
    EXPECT_EQ(Items(IDC_FREQUENCY), (std::vector<std::string>{"daily", "weekly", "monthly"}));
    EXPECT_EQ(view.Text(IDC_FREQUENCY), "daily");
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "");
    EXPECT_TRUE(view.controls[IDC_PERIOD_HINT].shown);
    EXPECT_TRUE(host.log.empty());
}

// The first window's answer arrives in the second window, and then the second's own.
TEST_F(OrderEntryTest, AWindowOpenedAgainBeforeTheAnswerListsTheFrequenciesOnce) {
    Open();
    Open();
    Answer(kMonthlyYearly);
    Answer(kMonthlyYearly);
    EXPECT_EQ(Items(IDC_FREQUENCY), (std::vector<std::string>{"monthly", "yearly"}));
}

TEST_F(OrderEntryTest, SubmitSendsAndClearsValueAndPeriod) {
    Open();
    Answer(kMonthlyYearly);
    view.SetText(IDC_CLIENT_SEARCH, "C002");
    view.SetText(IDC_VALUE, "1500");
    view.SetText(IDC_PERIOD, "6");
    entry.Submit(kNow);
    ASSERT_EQ(control.sent.size(), 2u);
    EXPECT_NE(control.sent[1].find("54001=C002"), std::string::npos) << control.sent[1];
    EXPECT_NE(control.sent[1].find("53063=150000 10012=monthly"), std::string::npos) << control.sent[1];
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");

    // Cleared also when sending fails: the text says so.
    view.SetText(IDC_VALUE, "1500");
    view.SetText(IDC_PERIOD, "6");
    control.refuses = true;
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes, std::vector<std::string>{"Sending Request add_sip_orders Failed"});
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");
}

TEST_F(OrderEntryTest, ARefusedSubmitKeepsWhatWasTyped) {
    Open();
    view.SetText(IDC_VALUE, "abc");
    entry.Submit(kNow);
    EXPECT_EQ(view.boxes, std::vector<std::string>{"Enter valid Amount"});
    EXPECT_EQ(view.Text(IDC_VALUE), "abc");
    EXPECT_EQ(view.Text(IDC_PERIOD), "1");
    EXPECT_EQ(view.focused, IDC_VALUE);
    EXPECT_EQ(control.sent.size(), 1u);
}

TEST_F(OrderEntryTest, ASecondPressDuringTheCautionaryQuestionPlacesNothing) {
    Open();
    view.SetText(IDC_VALUE, "1500");
    host.duringCaution = [&] { entry.Submit(kNow); };
    entry.Submit(kNow);
    EXPECT_EQ(control.sent.size(), 2u); // the mode and one order
    host.duringCaution = [] {};
    view.SetText(IDC_VALUE, "1500");
    view.SetText(IDC_PERIOD, "1");
    entry.Submit(kNow);
    EXPECT_EQ(control.sent.size(), 3u);
}

TEST_F(OrderEntryTest, ThePlanFollowsTheForm) {
    Open();
    EXPECT_EQ(view.Text(IDC_PLAN_SUMMARY), "");
    entry.ShowPlan();
    EXPECT_FALSE(view.controls[IDC_PLAN_DATES].enabled) << "no frequency yet";
    Answer(kMonthlyYearly);
    EXPECT_EQ(view.Text(IDC_PLAN_SUMMARY), "1 planned from 01-Feb-2027 to 01-Feb-2027");
    EXPECT_TRUE(view.controls[IDC_PLAN_DATES].enabled);
    view.SetText(IDC_PERIOD, "12");
    for (const auto& [value, total] :
         {std::pair{"100.51", "\nTotal outlay Rs 1,206.12"}, {"10000000", ""}, {"", ""}}) {
        view.SetText(IDC_VALUE, value);
        entry.ShowPlan();
        EXPECT_EQ(view.Text(IDC_PLAN_SUMMARY),
                  std::string("12 planned from 01-Feb-2027 to 01-Jan-2028") + total);
    }
}

TEST_F(OrderEntryTest, AnswersAreShownErrorsLogged) {
    Answer({{32767, {"add_sip_orders"}}, {20008, {"SIP registered: 17"}}, {54001, {"C001"}}});
    EXPECT_EQ(view.boxes, std::vector<std::string>{"SIP registered: 17"});
    Answer({{32767, {"add_sip_orders"}}, {32766, {"55"}}, {20008, {"no"}}});
    Answer({{32767, {"modify_sip_order"}}, {32766, {"56"}}});
    EXPECT_EQ(host.log, (std::vector<std::string>{"Error in response : add_sip_orders . Error Code : 55",
                                                  "Error in response : modify_sip_order . Error Code : 56"}));
    EXPECT_EQ(view.boxes.size(), 1u);
    EXPECT_FALSE(view.closed);
    Answer({{32767, {"modify_sip_order"}}, {20008, {"modified"}}});
    EXPECT_EQ(view.boxes.back(), "modified");
    EXPECT_TRUE(view.closed);
}

} // namespace
} // namespace planfold::test

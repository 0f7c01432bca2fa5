// The order entry form: first contents, changes, Submit and answers, without a window.

#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

class OrderEntryTest : public ::testing::Test, protected Stage {
protected:
    void SetUp() override {
        view.controls[IDC_SERIES].items = {"BE", "EQ"};
        view.controls[IDC_SYMBOL].items = {"ARBORTEX", "BETA"};
        view.controls[IDC_CLIENT_COMBO].items = {"C001", "C002"};
        view.controls[IDC_HOST_PRODUCTS].items = {"CNC", "MIS", "NRML"};
    }

    void Open(std::string_view customProducts = {}) { entry.Initialise(kNow, customProducts); }
    void Answer(const Fields& fields) { entry.OnResponse(Received(fields).Message()); }
    Texts Items(int combo) const { return view.controls[combo].items; }

    DialogDouble view;
    OrderEntry entry{session, view, &control};
};

const Fields kMonthlyYearly{
    {32767, {"get_sip_operation_mode"}}, {10012, {"monthly", "yearly"}}, {54101, {"6", "2"}}};

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

TEST_F(OrderEntryTest, SubmitSendsAndClearsValueAndPeriod) {
    Open();
    Answer(kMonthlyYearly);
    view.SetText(IDC_CLIENT_SEARCH, "C002");
    view.SetText(IDC_VALUE, "1500");
    view.SetText(IDC_PERIOD, "6");
    entry.Submit(kNow);
    ASSERT_EQ(host.requests.size(), 2u);
    EXPECT_NE(host.requests[1].find("54001=C002"), std::string::npos) << host.requests[1];
    EXPECT_NE(host.requests[1].find("53063=150000 10012=monthly"), std::string::npos) << host.requests[1];
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");

    // Cleared also when sending fails: the text says so.
    view.SetText(IDC_VALUE, "1500");
    view.SetText(IDC_PERIOD, "6");
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
    EXPECT_EQ(host.requests.size(), 1u);
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
    EXPECT_EQ(view.boxes, Texts{"SIP registered: 17"});
    Answer({{32767, {"add_sip_orders"}}, {32766, {"55"}}, {20008, {"no"}}});
    Answer({{32767, {"modify_sip_order"}}, {32766, {"56"}}});
    EXPECT_EQ(host.log, (Texts{"Error in response : add_sip_orders . Error Code : 55",
                               "Error in response : modify_sip_order . Error Code : 56"}));
    EXPECT_EQ(view.boxes.size(), 1u);
    EXPECT_FALSE(view.closed);
    Answer({{32767, {"modify_sip_order"}}, {20008, {"modified"}}});
    EXPECT_EQ(view.boxes.back(), "modified");
    EXPECT_FALSE(view.closed) << "nothing was being modified";
}

// A form filled to modify: what is locked, what is sent, and which answer closes it.
class ModifyTest : public OrderEntryTest {
protected:
    static SipRegistration Registered(const char* number) {
        return {.number = number,
                .exchange = "NSE",
                .frequency = "monthly",
                .orderType = "MARKET",
                .product = "CNC",
                .totalPeriod = "12",
                .installments = "24",
                .tradingSymbol = "A-B-EQ",
                .action = "SWP",
                .sipType = "value",
                .amount = "123.45",
                .quantity = "",
                .startDate = "05-Mar-2020",
                .client = "C001"};
    }
    void Fill(const SipRegistration& registration) {
        entry.Initialise(kNow, {});
        entry.FillForModify(registration);
    }
    std::string LockedControls() const {
        std::string locked;
        for (const auto& [id, its] : view.controls)
            if (!its.enabled) locked += std::to_string(id) + " ";
        return locked;
    }
};

TEST_F(ModifyTest, OnlyValueAndPeriodCanBeChangedAndAPastStartDoesNotBlock) {
    Fill(Registered("SIP7"));
    EXPECT_EQ(view.title, "Planfold Modify Order: SIP7");
    EXPECT_EQ(LockedControls(), "1003 1005 1008 1018 1019 1026 1030 1040 1041 1057 1058 ");
    const std::pair<int, const char*> texts[] = {
        {IDC_EXCHANGE, "NSE"},      {IDC_SERIES, "EQ"},          {IDC_SYMBOL, "A-B"},
        {IDC_ACTION, "SWP"},        {IDC_ORDER_TYPE, "MARKET"},  {IDC_PRODUCT, "CNC"},
        {IDC_FREQUENCY, "monthly"}, {IDC_INVEST_BY, "Amount"},   {IDC_VALUE, "123.45"},
        {IDC_PERIOD, "12"},         {IDC_CLIENT_SEARCH, "C001"}, {IDC_SUBMIT, "Modify"},
    };
    for (const auto& [id, text] : texts)
        EXPECT_EQ(view.Text(id), text) << id;
    EXPECT_EQ(FormatPickerDate(view.date), "05/Mar/2020");
    // The answer of the opening comes late: it must not touch the filled form.
    Answer({{32767, {"get_sip_operation_mode"}}, {10012, {"daily", "weekly"}}, {54101, {"2", "2"}}});
    EXPECT_EQ(view.controls[IDC_FREQUENCY].items, Texts{"monthly"});

    view.SetText(IDC_VALUE, "200");
    view.SetText(IDC_PERIOD, "18");
    entry.Submit(kNow);
    EXPECT_EQ(host.LastRequest(), "0=modify_sip_order 64804=SIP7 53063=20000 63415=18");
    EXPECT_EQ(host.log, Texts{"Request sent Modify SIP Order: SIP7"});
    EXPECT_EQ(view.Text(IDC_VALUE) + view.Text(IDC_PERIOD), "");
    const char* texts2[] = {"Failed to add the request modify_sip_order", "Failed to add the SIP ID",
                            "Failed to add Amount or Quantity", "Failed to add the Total Period"};
    for (int call = 0; call < 4; ++call) {
        view.SetText(IDC_VALUE, "200");
        view.SetText(IDC_PERIOD, "18");
        const FailQmxCall failing(FailQmxCall::addData, call + 1);
        entry.Submit(kNow);
        EXPECT_EQ(view.boxes.back(), texts2[call]);
    }
    EXPECT_EQ(host.requests.size(), 2u);
}

TEST_F(ModifyTest, RowsOfEveryShapeFillTheForm) {
    struct Row {
        const char* symbol;
        const char* sipType;
        int mode;
        const char* expected; // symbol, series, invest by, value, period, title
    };
    const Row rows[] = {
        {"ARBORTEX-EQ", "value", 0, "ARBORTEX|EQ|Amount|123.45|12|Planfold Modify Order: SIP7"},
        {"ARBORTEX", "qty", 1, "ARBORTEX||Quantity|5|24|Planfold Modify Order: SIP7"},
        {"-", "other", 1, "||Amount|123.45|24|Planfold Modify Order: SIP7"},
    };
    for (const Row& row : rows) {
        SipRegistration registration = Registered("SIP7");
        registration.tradingSymbol = row.symbol;
        registration.sipType = row.sipType;
        registration.quantity = "5";
        entry.Initialise(kNow, {});
        session.m_nSipOperationMode = row.mode;
        entry.FillForModify(registration);
        std::string seen;
        for (const int id : {IDC_SYMBOL, IDC_SERIES, IDC_INVEST_BY, IDC_VALUE, IDC_PERIOD})
            seen += view.Text(id) + "|";
        EXPECT_EQ(seen + view.title, row.expected);
    }
    EXPECT_EQ(view.Text(IDC_PERIOD_LABEL), "SIP Periods");
}

TEST_F(ModifyTest, AnUnreadableMonthStopsTheFillingButNeverMakesANewOrder) {
    Fill(Registered("SIP7"));
    for (const char* date : {"05-mar-2027", "05/Mar/2027", "", "05-Mar", "--"}) {
        SipRegistration unreadable = Registered("SIP8");
        unreadable.startDate = date;
        view.title.clear();
        entry.FillForModify(unreadable);
        EXPECT_NE(view.title, "Planfold Modify Order: SIP8") << date;
        EXPECT_NE(view.Text(IDC_SUBMIT), "Modify") << date;
        EXPECT_TRUE(entry.FilledForModify());
        entry.Submit(kNow);
        EXPECT_EQ(host.LastRequest(), "0=modify_sip_order 64804= 53063=12345 63415=12")
            << "neither a new order nor a change of the registration shown before";
    }
    entry.Initialise(kNow, {});
    EXPECT_FALSE(entry.FilledForModify()) << "a window made anew places new orders";
}

TEST_F(ModifyTest, TheAnswerClosesOnlyTheWindowThatStillShowsItsRegistration) {
    const Fields good{{32767, {"modify_sip_order"}}, {20008, {"modified"}}};
    Fill(Registered("SIP7"));
    entry.Submit(kNow);
    entry.FillForModify(Registered("SIP8"));
    Answer(good);
    EXPECT_FALSE(view.closed);
    entry.Submit(kNow);
    Answer({{32767, {"modify_sip_order"}}, {32766, {"9"}}});
    EXPECT_FALSE(view.closed) << "refused";
    view.SetText(IDC_VALUE, "1");
    view.SetText(IDC_PERIOD, "2");
    entry.Submit(kNow);
    Answer(good);
    EXPECT_TRUE(view.closed);
}

} // namespace
} // namespace planfold::test

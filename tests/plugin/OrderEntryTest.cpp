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
    EXPECT_TRUE(view.closed);
}

} // namespace
} // namespace planfold::test

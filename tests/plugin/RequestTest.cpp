// Requests as they leave the plug-in, and what happens when a step of building them fails.

#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

#include <set>

namespace planfold::test {
namespace {

class RequestTest : public ::testing::Test, protected Stage {
protected:
    RequestTest() {
        order.orderType = "MKT";
        order.product = "CNC";
        order.frequency = "monthly";
        order.amountOrQuantity = "123450";
        order.totalPeriod = "12";
        order.startDate = "1799625600";
        order.customerFirm = "C";
        order.validity = "DAY";
        order.investType = "value";
        order.exchange = "nse_cm";
        order.side = "B";
        order.token = "1013";
        order.tradingSymbol = "ARBORTEX-EQ";
        order.account = "C001";
        order.sideWord = "BUY";
    }

    bool Place() {
        return SendAddSipOrders(kPass, session, &control, notices, order, session.FreshIdentifier(kPass),
                                "NSE");
    }
    bool AskMode() { return SendGetSipOperationMode(kPass, session, &control, notices); }
    Texts Shown() { return std::exchange(notices.shown, {}); }

    sSipOrderData order;
    const std::string building = "zup_add_parameter: Error while building message";
};

constexpr char kLogStart[] = "NSE BUY SIP Order : Status : Trigger Pending CNC ARBORTEX-EQ at ";
constexpr char kLogEnd[] = " DAY monthly for period : 12 Months Client ID : C001 by DEALER1";

TEST_F(RequestTest, AddCarriesItsFieldsInOrder) {
    struct Row {
        const char* uuid;
        int caution;
        int mode;
        const char* tail;
    };
    const Row rows[] = {
        {"u-1", 0, 0, " orderId=u-1 cautionaryFlag=N orderSource=TWS"},
        {"u-1", 1, 1, " orderId=u-1 cautionaryFlag=Y operationMode=1 orderSource=TWS"},
        {"", 2, 0, " orderSource=TWS"},
        {"", -1, 7, " operationMode=7 orderSource=TWS"},
    };
    for (const Row& row : rows) {
        host.uuid = row.uuid;
        host.caution = row.caution;
        session.m_nSipOperationMode = row.mode;
        EXPECT_TRUE(Place());
        EXPECT_EQ(host.LastRequest(), TextOf(Order({})) + row.tail);
    }
    EXPECT_EQ(host.calls.back(),
              "pu_invoke_caution_order_confirmation(C001,value,CNC,123450,ARBORTEX-EQ,nse_cm)");
    EXPECT_EQ(host.requests.size(), std::size(rows));
    EXPECT_EQ(Shown(), Texts{});
    session.host = {}; // no optional callback at all
    session.m_nSipOperationMode = 0;
    EXPECT_TRUE(Place());
    EXPECT_EQ(host.LastRequest(), TextOf(Order({})) + " orderSource=TWS");
}

TEST_F(RequestTest, AddLogsTheOrderInRupeesOrSharesAndNeverFormats) {
    EXPECT_TRUE(Place());
    EXPECT_EQ(host.log.back(), std::string(kLogStart) + "1234.50" + kLogEnd);
    order.investType = "qty";
    order.amountOrQuantity = "5";
    EXPECT_TRUE(Place());
    EXPECT_EQ(host.log.back(), std::string(kLogStart) + "5" + kLogEnd);
    order.account = "%s%n%d";
    EXPECT_TRUE(Place());
    EXPECT_NE(host.log.back().find("Client ID : %s%n%d by"), std::string::npos);
}

TEST_F(RequestTest, EachStepOfAddFailsWithItsOwnText) {
    session.m_nSipOperationMode = 1;
    constexpr int fields = 22;
    std::set<std::string> told;
    for (int call = 1; call <= fields; ++call) {
        const FailQmxCall failing(FailQmxCall::addData, call);
        host.log.clear();
        host.calls.clear();
        EXPECT_FALSE(Place()) << call;
        const Texts shown = Shown();
        ASSERT_EQ(shown.size(), 1u) << call;
        told.insert(shown[0]);
        EXPECT_EQ(host.CallsOf("pu_invoke_caution_order_confirmation"), call < 20 ? 0 : 1) << call;
        const bool isToken = call == 3;
        EXPECT_EQ(shown[0] == "Failed to add the Token", isToken);
        EXPECT_EQ(host.log,
                  isToken ? Texts{"NSE BUY SIP Order Failed Status : Trigger Pending CNC ARBORTEX-EQ at 123450"
                                  + std::string(kLogEnd)}
                          : Texts{});
    }
    EXPECT_EQ(told.size(), std::size_t{fields});
    EXPECT_EQ(host.requests, Texts{});
}

TEST_F(RequestTest, StartingAndSendingFailWithTheirTexts) {
    {
        const FailQmxCall failing(FailQmxCall::startMsg, 1);
        EXPECT_FALSE(Place());
        EXPECT_EQ(Shown(), Texts{building});
    }
    {
        const FailQmxCall failing(FailQmxCall::addData, 1);
        EXPECT_FALSE(AskMode());
        EXPECT_EQ(Shown(), Texts{"Failed to add the request add_sip_orders"});
    }
    host.refuses = true;
    EXPECT_FALSE(Place());
    EXPECT_FALSE(AskMode());
    EXPECT_FALSE(SendAddSipOrders(kPass, session, nullptr, notices, order, {}, "NSE")); // no control at all
    EXPECT_EQ(Shown(), Texts(3, "Sending Request add_sip_orders Failed"));
    EXPECT_EQ(host.log, Texts{}) << "the log tells of sent orders only";
}

TEST_F(RequestTest, HandlesThatCouldNotBeOpenedAreToldAndFailEveryRequest) {
    for (const auto& [function, text] : {std::pair(FailQmxCall::openScratch, "Buffer Handle open Failed"),
                                         std::pair(FailQmxCall::ctorPrimeCb, "MNM Handle Open Failed")}) {
        Session unopened(host.Lookup(), host.IdentityStrings(), host.strings, host.record);
        const FailQmxCall failing(function, 1);
        unopened.OpenHandles(kPass, notices);
        EXPECT_FALSE(SendGetSipOperationMode(kPass, unopened, &control, notices));
        EXPECT_EQ(Shown(), (Texts{text, building}));
    }
}

// The cautionary question runs a message loop: another menu pick opens the handles anew, another window sends.
TEST_F(RequestTest, AnotherRequestDuringTheCautionaryQuestionSpoilsNothing) {
    void *primeCb = session.m_primeCb, *scratch = session.m_scratch;
    host.duringCaution = [&] {
        session.OpenHandles(kPass, notices);
        EXPECT_TRUE(AskMode());
    };
    EXPECT_TRUE(Place());
    EXPECT_EQ(host.requests, (Texts{"get_sip_operation_mode",
                                    TextOf(Order({})) + " orderId=UUID-1 cautionaryFlag=N orderSource=TWS"}));
    QmxError error{};
    EXPECT_TRUE(qmx_dtor_primecb(&primeCb, &error) && qmx_close_scratch(&scratch, &error));
}

TEST_F(RequestTest, EmptyValuesAreSentAsAbsent) {
    host.peerA.clear();
    order.token.clear();
    EXPECT_TRUE(Place());
    for (const char* absent : {" token= ", " peerIdA= "})
        EXPECT_NE(host.LastRequest().find(absent), std::string::npos) << host.LastRequest();
}

} // namespace
} // namespace planfold::test

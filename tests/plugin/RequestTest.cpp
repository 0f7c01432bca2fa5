// Requests as they leave the plug-in, and what happens when a step of building them fails.

#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class RequestTest : public ::testing::Test {
protected:
    void SetUp() override {
        session.host = ResolveHostCallbacks(session.lookup);
        session.OpenHandles(notices);
        host.peerA = "BROKER";
        host.peerB = "BRANCH";
        order.orderType = "MKT";
        order.product = "CNC";
        order.frequency = "monthly";
        order.amountOrQuantity = "123450";
        order.totalPeriod = "12";
        order.startDate = "1799625600";
        order.customerFirm = "C";
        order.validity = "DAY";
        order.investType = "value";
        order.exchangeSegment = "nse_cm";
        order.side = "B";
        order.token = "1013";
        order.tradingSymbol = "ALPHA-EQ";
        order.client = "C001";
        order.sideLabel = "BUY";
    }

    bool Place() { return SendAddSipOrders(session, &control, notices, order, "NSE"); }

    HostDouble host;
    RecordedNotices notices;
    RecordingControl control;
    Session session{host.Lookup(), host.IdentityStrings(), host.strings};
    sSipOrderData order;
};

constexpr char kUpToBranch[] = "0=add_sip_orders 63001=nse_cm 10100=1013 63100=ALPHA-EQ 12003=B 12008=MKT "
                               "64030=CNC 54152=value 53063=123450 "
                               "10012=monthly 49165=1799625600 63415=12 31003=DEALER1 54056=C 54001=C001 "
                               "12005=DAY 64056=BROKER 64053=BRANCH";

TEST_F(RequestTest, AddCarriesItsFieldsInOrder) {
    struct Row {
        const char* uuid;
        int caution;
        int mode;
        const char* tail;
    };
    const Row rows[] = {
        {"u-1", 0, 0, " 54158=u-1 53405=N 64756=TWS"},
        {"u-1", 1, 1, " 54158=u-1 53405=Y 63715=1 64756=TWS"},
        {"", 2, 0, " 64756=TWS"},
        {"", -1, 7, " 63715=7 64756=TWS"},
    };
    for (const Row& row : rows) {
        host.uuid = row.uuid;
        host.cautionAnswer = row.caution;
        session.m_nSipOperationMode = row.mode;
        control.sent.clear();
        EXPECT_TRUE(Place());
        EXPECT_EQ(control.sent, std::vector<std::string>{std::string(kUpToBranch) + row.tail});
    }
    EXPECT_EQ(host.cautionAsked,
              (std::vector<std::string>{"C001", "value", "CNC", "123450", "ALPHA-EQ", "nse_cm"}));
    EXPECT_TRUE(notices.shown.empty());
}

TEST_F(RequestTest, AddWorksWithoutTheOptionalCallbacks) {
    session.host = {};
    EXPECT_TRUE(Place());
    EXPECT_EQ(control.sent, std::vector<std::string>{std::string(kUpToBranch) + " 64756=TWS"});
}

TEST_F(RequestTest, AddLogsTheOrderInRupeesOrShares) {
    EXPECT_TRUE(Place());
    order.investType = "qty";
    order.amountOrQuantity = "5";
    order.sideLabel = "SELL";
    EXPECT_TRUE(Place());
    EXPECT_EQ(host.log,
              (std::vector<std::string>{
                  "NSE BUY SIP Order : Status : Trigger Pending CNC ALPHA-EQ at 1234.50 DAY monthly for "
                  "period : 12 Months Client ID : C001 by DEALER1",
                  "NSE SELL SIP Order : Status : Trigger Pending CNC ALPHA-EQ at 5 DAY monthly for "
                  "period : 12 Months Client ID : C001 by DEALER1"}));
}

TEST_F(RequestTest, TextsAreNeverFormats) {
    order.client = "%s%n%d";
    EXPECT_TRUE(Place());
    EXPECT_NE(host.log.at(0).find("Client ID : %s%n%d by"), std::string::npos);
}

TEST_F(RequestTest, EachStepOfAddFailsWithItsOwnText) {
    session.m_nSipOperationMode = 1;
    const char* texts[] = {
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
        "Failed to add Order ID",
        "Failed to add Cautionary Flag",
        "Failed to add Mode",
        "Failed to add Order Source",
    };
    int call = 0;
    for (const char* text : texts) {
        const FailQmxCall failing(FailQmxCall::addData, ++call);
        notices.shown.clear();
        host.log.clear();
        host.cautionAsked.clear();
        EXPECT_FALSE(Place()) << text;
        EXPECT_EQ(notices.shown, std::vector<std::string>{text});
        EXPECT_EQ(host.cautionAsked.empty(), call < 20) << text;
        const bool isToken = call == 3;
        EXPECT_EQ(host.log.size(), isToken ? 1u : 0u) << text;
        if (isToken) {
            EXPECT_EQ(host.log[0],
                      "NSE BUY SIP Order Failed Status : Trigger Pending CNC ALPHA-EQ at 123450 DAY "
                      "monthly for period : 12 Months Client ID : C001 by DEALER1");
        }
    }
    EXPECT_TRUE(control.sent.empty());
}

TEST_F(RequestTest, StartingAndSendingFailWithTheirTexts) {
    const auto both = [&] {
        notices.shown.clear();
        EXPECT_FALSE(Place());
        EXPECT_FALSE(SendGetSipOperationMode(session, &control, notices));
        return notices.shown;
    };
    const std::string build = "zup_add_parameter: Error while building message";
    {
        const FailQmxCall failing(FailQmxCall::startMsg, 1);
        EXPECT_FALSE(Place());
        EXPECT_EQ(notices.shown, std::vector<std::string>{build});
    }
    {
        notices.shown.clear();
        const FailQmxCall failing(FailQmxCall::addData, 1);
        EXPECT_FALSE(SendGetSipOperationMode(session, &control, notices));
        EXPECT_EQ(notices.shown, std::vector<std::string>{"Failed to add the request add_sip_orders"});
    }
    control.refuses = true;
    const std::vector<std::string> sending(2, "Sending Request add_sip_orders Failed");
    EXPECT_EQ(both(), sending);
    notices.shown.clear();
    EXPECT_FALSE(SendAddSipOrders(session, nullptr, notices, order, "NSE")); // no control at all
    EXPECT_EQ(notices.shown, std::vector<std::string>(1, sending[0]));
    // The log tells of sent orders only.
    EXPECT_TRUE(host.log.empty());
}

TEST_F(RequestTest, HandlesThatCouldNotBeOpenedAreToldAndFailEveryRequest) {
    HostDouble other;
    Session unopened(other.Lookup(), other.IdentityStrings(), other.strings);
    {
        const FailQmxCall scratch(FailQmxCall::openScratch, 1);
        unopened.OpenHandles(notices);
    }
    EXPECT_EQ(notices.shown, std::vector<std::string>{"Buffer Handle open Failed"});
    EXPECT_FALSE(SendGetSipOperationMode(unopened, &control, notices));
    EXPECT_EQ(notices.shown.back(), "zup_add_parameter: Error while building message");
    const EarlierHandles withoutScratch(unopened);
    {
        notices.shown.clear();
        const FailQmxCall prime(FailQmxCall::ctorPrimeCb, 1);
        unopened.OpenHandles(notices);
    }
    EXPECT_EQ(notices.shown, std::vector<std::string>{"MNM Handle Open Failed"});
    EXPECT_FALSE(SendGetSipOperationMode(unopened, &control, notices));
    EXPECT_EQ(notices.shown.back(), "zup_add_parameter: Error while building message");
}

// The cautionary question runs a message loop: another menu pick opens the handles anew, another window sends.
TEST_F(RequestTest, AnotherRequestDuringTheCautionaryQuestionSpoilsNothing) {
    const EarlierHandles firstPick(session);
    host.duringCaution = [&] {
        session.OpenHandles(notices);
        EXPECT_TRUE(SendGetSipOperationMode(session, &control, notices));
    };
    EXPECT_TRUE(Place());
    ASSERT_EQ(control.sent.size(), 2u);
    EXPECT_EQ(control.sent[0], "0=get_sip_operation_mode");
    EXPECT_EQ(control.sent[1], std::string(kUpToBranch) + " 54158=uuid-1 53405=N 64756=TWS");
}

TEST_F(RequestTest, EmptyValuesAreSentAsAbsent) {
    host.peerA.clear();
    order.token.clear();
    EXPECT_TRUE(Place());
    EXPECT_NE(control.sent.at(0).find(" 10100= "), std::string::npos) << control.sent[0];
    EXPECT_NE(control.sent.at(0).find(" 64056= "), std::string::npos) << control.sent[0];
}

} // namespace
} // namespace planfold::test

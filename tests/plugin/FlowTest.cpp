// The form, the connection library and the trading server together: what a dealer sees of one order.

#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/FlowStage.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class FlowTest : public ::testing::Test, public FlowStage, public CKeloRxNotifierBase {
protected:
    void SetUp() override {
        view.controls[IDC_SERIES].items = {"EQ"};
        view.controls[IDC_SYMBOL].items = {"ALPHA"};
    }
    void TearDown() override {
        rxClient.Destroy(requests);
        rxClient.Destroy(stream);
        EXPECT_EQ(rxClient.LiveControls(), 0u);
    }

    void OnResponse(void*, void* message, void*) override { entry.OnResponse(message); }
    void OnBroadcast(void* message, std::uint32_t, void*) override {
        streamed.emplace_back(qmx::Text(message, 64804));
    }

    void Open() {
        entry.Initialise(kNow, {});
        view.SetText(IDC_CLIENT_SEARCH, "C001");
        Pump();
    }
    void Submit(const char* value, const char* periods) {
        view.SetText(IDC_VALUE, value);
        view.SetText(IDC_PERIOD, periods);
        entry.Submit(kNow);
    }

    OrderEntryDouble view;
    RxControl* requests = rxClient.Get(kRxRequests, this);
    RxControl* stream = rxClient.Get(kRxAccountStream, this);
    OrderEntry entry{session, view, requests};
    std::vector<std::string> streamed;
};

TEST_F(FlowTest, AnOrderIsRegisteredJournalledAnsweredAndStreamed) {
    SubscribeBroadcasts(kPass, session, stream, view);
    Open();
    EXPECT_EQ(view.controls[IDC_FREQUENCY].items.size(), server.Config().frequencies.size());
    view.SelectText(IDC_FREQUENCY, "monthly");
    Submit("1234.50", "12");
    EXPECT_TRUE(view.boxes.empty()) << "answers never come from inside the sending";
    Pump();

    ASSERT_EQ(server.Registrations().size(), 1u);
    const std::string number(server.Registrations()[0].Number());
    ASSERT_EQ(view.boxes.size(), 1u);
    EXPECT_NE(view.boxes[0].find(number), std::string::npos) << view.boxes[0];
    EXPECT_EQ(streamed, std::vector<std::string>{number});
    EXPECT_NE(journalFile.Text().find(number), std::string::npos);
    EXPECT_NE(journalFile.Text().find("123450"), std::string::npos);
    EXPECT_EQ(host.log.size(), 1u);
}

TEST_F(FlowTest, ARequestIdentifierSeenBeforeIsAnsweredAgainAndNotAppliedAgain) {
    Open();
    view.SelectText(IDC_FREQUENCY, "monthly");
    Submit("100", "12");
    Submit("100", "12"); // the host double gives the same identifier
    Pump();
    EXPECT_EQ(server.Registrations().size(), 1u);
    EXPECT_EQ(view.boxes.size(), 2u);
}

TEST_F(FlowTest, FaultsOfTheServerAreBorne) {
    struct Row {
        vesk::RequestFault fault;
        std::size_t registered;
        std::vector<std::string> log;
    };
    const Row rows[] = {
        {{.errorCode = "99"}, 0, {"Error in response : add_sip_orders . Error Code : 99"}},
        {{.errorCode = {}, .silent = true}, 1, {}},
        {{.errorCode = {}, .garbage = true}, 2, {}},
    };
    Open();
    view.SelectText(IDC_FREQUENCY, "monthly");
    int identifier = 0;
    for (const Row& row : rows) {
        server.Config().faults["add_sip_orders"] = row.fault;
        host.uuid = "u" + std::to_string(++identifier);
        Submit("100", "12");
        host.log.clear();
        Pump();
        EXPECT_EQ(server.Registrations().size(), row.registered);
        EXPECT_EQ(host.log, row.log);
        EXPECT_TRUE(view.boxes.empty());
    }
}

TEST_F(FlowTest, EveryLoginModeHearsOfItsOrders) {
    host.accounts = {"C001", "C002"};
    host.clientOverview = 1;
    Open();
    view.SelectText(IDC_FREQUENCY, "monthly");
    for (const int mode : {0, 1, 2, 3, 4}) {
        session.m_nLoginMode = mode;
        rxClient.Destroy(stream);
        stream = rxClient.Get(kRxAccountStream, this);
        SubscribeBroadcasts(kPass, session, stream, view);
        streamed.clear();
        host.uuid = "mode-" + std::to_string(mode);
        Submit("100", "12");
        Pump();
        EXPECT_EQ(streamed.size(), 1u) << mode;
    }
}

} // namespace
} // namespace planfold::test

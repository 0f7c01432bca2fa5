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
    void TearDown() override {
        rxClient.Destroy(requests);
        rxClient.Destroy(stream);
        EXPECT_EQ(rxClient.LiveControls(), 0u);
    }

    void OnResponse(void*, void* message, void*) override { entry.OnResponse(message); }
    void OnBroadcast(void* message, std::uint32_t, void*) override {
        streamed.emplace_back(qmx::Text(message, tag::registrationNumber));
    }

    OrderEntryDouble view;
    RxControl* requests = rxClient.Get(kRxRequests, this);
    RxControl* stream = rxClient.Get(kRxAccountStream, this);
    OrderEntry entry{session, view, requests};
    Texts streamed;
};

TEST_F(FlowTest, AnOrderIsRegisteredJournalledAnsweredAndStreamed) {
    view.controls[IDC_SERIES].items = {"EQ"};
    view.controls[IDC_SYMBOL].items = {"ALPHA"};
    SubscribeBroadcasts(kPass, session, stream, view);
    entry.Initialise(kNow, {});
    Pump();
    EXPECT_EQ(view.controls[IDC_FREQUENCY].items.size(), server.Config().frequencies.size());
    for (const auto& [edit, text] :
         {std::pair(IDC_CLIENT_SEARCH, "C001"), {IDC_VALUE, "1234.50"}, {IDC_PERIOD, "12"}})
        view.SetText(edit, text);
    view.SelectText(IDC_FREQUENCY, "monthly");
    entry.Submit(kNow);
    EXPECT_TRUE(view.boxes.empty()) << "answers never come from inside the sending";
    Pump();

    ASSERT_EQ(server.Registrations().size(), 1u);
    const std::string number(server.Registrations()[0].Number());
    ASSERT_EQ(view.boxes.size(), 1u);
    EXPECT_NE(view.boxes[0].find(number), std::string::npos) << view.boxes[0];
    EXPECT_EQ(streamed, Texts{number});
    EXPECT_NE(journalFile.Text().find(number), std::string::npos);
    EXPECT_NE(journalFile.Text().find("123450"), std::string::npos);
    EXPECT_EQ(host.log.size(), 1u);
}

} // namespace
} // namespace planfold::test

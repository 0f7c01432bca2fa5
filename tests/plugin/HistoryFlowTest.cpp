// The order history over the real connection library and trading server.

#include "plugin/base/Numbers.h"
#include "tests/plugin/FlowStage.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class HistoryFlowTest : public ::testing::Test, public FlowStage, public CKeloRxNotifierBase {
protected:
    void TearDown() override { rxClient.Destroy(requests); }
    void OnResponse(void*, void* message, void*) override { history.OnResponse(message); }
    void OnBroadcast(void*, std::uint32_t, void*) override {}

    HistoryDouble view;
    RxControl* requests = rxClient.Get(kRxRequests, this);
    OrderHistory history{session, view, requests};
};

TEST_F(HistoryFlowTest, OrdersAndTheirTradesComeAsTheServerHasThem) {
    const std::string number = Place(own, "frequency=daily investType=qty amountOrQuantity=90");
    history.Open(kPass, number);
    Pump();
    EXPECT_EQ(view.listings, 1);
    EXPECT_FALSE(view.shown) << "no orders yet";

    const vesk::Registration& registration = *server.Find(number);
    ASSERT_EQ(server.Clock().Execute(registration, {server.Clock().OpenDays(registration, 60), 12'345, 7}), "");
    history.Open(kPass, number);
    history.Open(kPass, "SIP-unknown"); // refused, and in nobody's way
    history.Open(kPass, number);
    Pump();
    EXPECT_TRUE(view.shown);
    EXPECT_EQ(view.boxes, Texts{});
    ASSERT_EQ(history.Records().size(), 60u);
    std::size_t pending = 0, traded = 0, untraded = 0;
    for (const sOrderHistory& order : history.Records()) {
        const auto text = [&](HistoryField field) { return order[field]; };
        EXPECT_EQ(text(HistoryField::registrationNumber) + text(HistoryField::account)
                      + text(HistoryField::exchange) + text(HistoryField::side) + text(HistoryField::orderType),
                  number + "C001NSESIPMARKET");
        EXPECT_NEAR(LeadingReal(text(HistoryField::price)), 123.45, 3);
        const bool hasTraded = text(HistoryField::tradedQuantity) != "0";
        ++(hasTraded ? traded : untraded);
        pending += order.fillPending;
        // Told by the order, or by its trades.
        EXPECT_EQ(!text(HistoryField::tradedPrice).empty(), hasTraded);
        EXPECT_EQ(!text(HistoryField::fillDetailA).empty(), hasTraded);
    }
    EXPECT_TRUE(pending > 0 && pending < traded && untraded > 0) << pending << " " << traded << " " << untraded;
    EXPECT_EQ(host.log.size(), 1u) << "the refusal";
}

} // namespace
} // namespace planfold::test

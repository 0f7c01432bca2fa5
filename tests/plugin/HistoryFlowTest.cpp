// The order history and the restricted dates over the real connection library and trading server.

#include "host/server/sample/SampleOrders.h"
#include "plugin/history/OrderHistory.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/resources/resource.h"
#include "plugin/restricted/RestrictedDates.h"
#include "tests/plugin/FlowStage.h"

#include <gtest/gtest.h>

namespace planfold::test {
namespace {

class HistoryDouble final : public HistoryView {
public:
    void ShowMessage(std::string_view text) override { boxes.emplace_back(text); }
    void ListRecords() override { ++listings; }
    void OnRecordChanged() override {}
    std::optional<std::size_t> FocusedRecord() const override { return std::nullopt; }
    void ShowDetails(const HistoryDetails&) override {}
    void Show(bool shown) override { isShown = shown; }

    Texts boxes;
    int listings = 0;
    bool isShown = false;
};

class HistoryFlowTest : public ::testing::Test, public FlowStage, public CKeloRxNotifierBase {
protected:
    void TearDown() override { rxClient.Destroy(requests); }
    void OnResponse(void*, void* message, void*) override {
        usesDates ? dates.OnResponse(message) : history.OnResponse(message);
    }
    void OnBroadcast(void*, std::uint32_t, void*) override {}

    std::string Register() {
        sSipOrderData order{.orderType = "MKT",
                            .product = "CNC",
                            .frequency = "daily",
                            .amountOrQuantity = "90",
                            .totalPeriod = "12",
                            .startDate = std::to_string(ToSeconds({2027, 1, 20})),
                            .customerFirm = "C",
                            .validity = "DAY",
                            .investType = "qty",
                            .exchangeSegment = "nse_cm",
                            .side = "B",
                            .token = "1013",
                            .tradingSymbol = "ARBORTEX-EQ",
                            .client = "C001",
                            .sideLabel = "BUY"};
        SendAddSipOrders(session, requests, notices, order, "NSE");
        Pump();
        return std::string(server.Registrations().back().Number());
    }

    HistoryDouble view;
    DialogDouble dialog;
    RxControl* requests = rxClient.Get(kRxRequests, this);
    OrderHistory history{session, view, requests};
    RestrictedDates dates{session, dialog, requests};
    bool usesDates = false; // which window the control is
};

TEST_F(HistoryFlowTest, OrdersAndTheirTradesComeAsTheServerHasThem) {
    const std::string number = Register();
    history.Open(number);
    Pump();
    EXPECT_EQ(view.listings, 1);
    EXPECT_FALSE(view.isShown) << "no orders yet";

    const vesk::Registration& registration = *server.Find(number);
    ASSERT_EQ(server.Clock().Execute(registration, {server.Clock().OpenDays(registration, 60), 12'345, 7}), "");
    history.Open(number);
    history.Open("SIP-unknown"); // refused, and in nobody's way
    history.Open(number);
    Pump();
    EXPECT_TRUE(view.isShown);
    EXPECT_EQ(view.boxes, Texts{});
    ASSERT_EQ(history.Records().size(), 60u);
    std::size_t pending = 0, traded = 0, untraded = 0;
    for (const sOrderHistory& order : history.Records()) {
        const auto text = [&](HistoryField field) { return order[field]; };
        EXPECT_EQ(text(HistoryField::registrationNumber) + text(HistoryField::clientId)
                      + text(HistoryField::exchange) + text(HistoryField::action)
                      + text(HistoryField::orderType),
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
    EXPECT_EQ(host.log.size(), 2u) << "the order's line and the refusal's";
}

TEST_F(HistoryFlowTest, RestrictedDatesAreSetAndReadBack) {
    usesDates = true;
    dates.Initialise(kNow);
    const auto held = [&] {
        return dialog.Text(IDC_HELD_FROM) + "-" + dialog.Text(IDC_HELD_TO) + " " + dialog.Text(IDC_HELD_YEAR);
    };
    dates.Get();
    Pump();
    EXPECT_EQ(held(), "- ") << "none is held";
    const struct {
        int from, to, year;
        const char *box, *held;
    } rows[] = {
        {30, 0, 0, "From date can't be greater than To date", "- "},
        {4, 4, 20, "Restricted Date configured Succesfully", "5-5 2047"},
        {27, 30, 1, "Restricted Date configured Succesfully", "28-31 2028"},
    };
    for (const auto& row : rows) {
        dialog.Select(IDC_RESTRICT_FROM, row.from);
        dialog.Select(IDC_RESTRICT_TO, row.to);
        dialog.Select(IDC_RESTRICT_YEAR, row.year);
        dates.Set();
        Pump();
        EXPECT_EQ(std::exchange(dialog.boxes, {}), Texts{row.box});
        EXPECT_EQ(held(), "- ");
        dates.Get();
        Pump();
        EXPECT_EQ(held(), row.held);
    }
    // 28 to 31 February 2028 are the 28th and the 29th.
    EXPECT_TRUE(server.Clock().Restricted().Has(std::chrono::year(2028) / 2 / 29));
    EXPECT_FALSE(server.Clock().Restricted().Has(std::chrono::year(2028) / 3 / 1));
}

} // namespace
} // namespace planfold::test

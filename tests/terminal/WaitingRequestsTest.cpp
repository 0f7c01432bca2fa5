// What is shown of waiting requests, and how long they are waited for.

#include "host/terminal/core/WaitingRequests.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

TEST(WaitingRequests, CellsSayWhatTheRequestIsAndWhetherItHasLeft) {
    qmx::MessageWriter writer;
    const auto order = [&](const char* type, const char* value) {
        return writer.Start()
            .Add(tag::requestName, "add_sip_orders")
            .Add(tag::account, "CL1")
            .Add(tag::tradingSymbol, "ALPHA-EQ")
            .Add(tag::registrationNumber, "SIP1")
            .Add(tag::investType, type)
            .Add(tag::amountOrQuantity, value)
            .Finish();
    };
    const std::string modify =
        writer.Start().Add(tag::requestName, "modify_sip_order").Add(tag::registrationNumber, "SIP1").Finish();
    const struct {
        std::string bytes;
        bool hasLeft;
        std::int64_t ageMs;
        const char* cells;
    } rows[] = {
        {order("value", "150005"), false, 0, "add_sip_orders|CL1|ALPHA-EQ|1500.05|00:00:10|not sent|"},
        {order("qty", "12"), true, 11'999, "add_sip_orders|CL1|ALPHA-EQ|12|23:59:59|sent, no answer|"},
        {order("value", "x"), true, 9'000, "add_sip_orders|CL1|ALPHA-EQ||00:00:01|sent, no answer|"},
        {modify, false, 86'400'000, "modify_sip_order||SIP1||00:00:10|not sent|"},
        {"rubbish", false, 0, "||||00:00:10|not sent|"},
    };
    for (const auto& row : rows) {
        const WaitingRequest request{1, row.bytes, 0, row.hasLeft};
        std::string cells;
        for (int i = 0; i < static_cast<int>(WaitingColumn::count); ++i)
            cells += WaitingCell(request, static_cast<WaitingColumn>(i), row.ageMs, 10) + '|';
        EXPECT_EQ(cells, row.cells);
    }
}

TEST(LeaveLimit, WaitsAsLongAsAnswersComeButNotForEver) {
    constexpr std::int64_t quiet = LeaveLimit::kQuietMs, longest = LeaveLimit::kLongestMs;
    LeaveLimit limit(3, 1000);
    EXPECT_FALSE(limit.IsOver(3, 1000 + quiet - 1));
    EXPECT_FALSE(limit.IsOver(2, 1000 + quiet + 1));
    EXPECT_FALSE(limit.IsOver(2, 1000 + 2 * quiet));
    EXPECT_TRUE(limit.IsOver(2, 1001 + 2 * quiet));
    EXPECT_TRUE(limit.IsOver(0, 1001));
    LeaveLimit busy(1000, 0);
    std::size_t waiting = 1000;
    for (std::int64_t now = 0; now < longest; now += quiet / 2)
        EXPECT_FALSE(busy.IsOver(--waiting, now));
    EXPECT_TRUE(busy.IsOver(--waiting, longest));
}

} // namespace
} // namespace vesk

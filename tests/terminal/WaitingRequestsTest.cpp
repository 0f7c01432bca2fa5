// What is shown of waiting requests, and how long they are waited for.

#include "host/terminal/core/WaitingRequests.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

TEST(WaitingRequests, CellsSayValueAndSinceWhen) {
    const struct {
        const char *type, *value;
        std::int64_t ageMs;
        const char* cells;
    } rows[] = {{"value", "150005", 0, "1500.05 00:00:10"},
                {"qty", "12", 11'999, "12 23:59:59"},
                {"value", "x", 86'400'000, " 00:00:10"}};
    for (const auto& row : rows) {
        qmx::MessageWriter writer;
        const std::string bytes =
            writer.Add(tag::investType, row.type).Add(tag::amountOrQuantity, row.value).Finish();
        const WaitingRequest request{1, bytes};
        EXPECT_EQ(WaitingCell(request, WaitingColumn::value, row.ageMs, 10) + ' '
                      + WaitingCell(request, WaitingColumn::since, row.ageMs, 10),
                  row.cells);
    }
}

TEST(LeaveLimit, WaitsAsLongAsAnswersComeButNotForEver) {
    constexpr std::int64_t quiet = LeaveLimit::kQuietMs;
    LeaveLimit limit(1000, 0);
    EXPECT_FALSE(limit.IsOver(1000, quiet - 1));
    EXPECT_FALSE(limit.IsOver(999, quiet));
    EXPECT_TRUE(limit.IsOver(999, 2 * quiet));
    EXPECT_TRUE(limit.IsOver(0, quiet));
    EXPECT_TRUE(limit.IsOver(998, LeaveLimit::kLongestMs));
}

} // namespace
} // namespace vesk

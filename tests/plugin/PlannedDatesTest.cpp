#include "plugin/orderentry/PlannedDates.h"

#include <gtest/gtest.h>

namespace planfold {
namespace {

std::string Dates(const Plan& plan) {
    std::string text;
    for (std::int64_t i = 0; const auto date = PlannedDate(plan, i); ++i)
        text += (i ? " " : "") + FormatPlannedDate(*date);
    return text;
}

// Worked out by hand with a calendar.
TEST(PlannedDate, FollowsTheCalendar) {
    struct Row {
        const char* frequency;
        LocalDateTime start;
        std::int64_t instalments;
        const char* dates;
    };
    const Row rows[] = {
        {"daily", {2026, 12, 30}, 4, "30-Dec-2026 31-Dec-2026 01-Jan-2027 02-Jan-2027"},
        {"daily", {2028, 2, 28}, 3, "28-Feb-2028 29-Feb-2028 01-Mar-2028"},
        {"weekly", {2027, 2, 22}, 3, "22-Feb-2027 01-Mar-2027 08-Mar-2027"},
        {"monthly", {2027, 1, 31}, 5, "31-Jan-2027 28-Feb-2027 31-Mar-2027 30-Apr-2027 31-May-2027"},
        {"monthly", {2027, 12, 30}, 4, "30-Dec-2027 30-Jan-2028 29-Feb-2028 30-Mar-2028"},
        {"yearly", {2028, 2, 29}, 5, "29-Feb-2028 28-Feb-2029 28-Feb-2030 28-Feb-2031 29-Feb-2032"},
        {"yearly", {2027, 3, 10}, 1, "10-Mar-2027"},
        {"yearly", {9998, 3, 10}, 5, "10-Mar-9998 10-Mar-9999"},
        {"Monthly", {2027, 1, 31}, 5, ""},
        {"", {2027, 1, 31}, 5, ""},
        {"daily", {2027, 1, 31}, 0, ""},
        {"daily", {2027, 1, 31}, -3, ""},
        {"daily", {2027, 2, 30}, 3, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Dates({row.start, row.frequency, row.instalments}), row.dates)
            << row.frequency << " " << FormatPlannedDate(row.start);
}

TEST(IsNonTradingDay, KnowsWeekendsAndTheHostsDates) {
    const std::uint32_t dates[] = {20270126, 20270315};
    const NonTradingDates holidays{2, 0, dates};
    const NonTradingDates none{5, 0, nullptr};
    EXPECT_TRUE(IsNonTradingDay({2027, 1, 26}, &holidays)); // a Tuesday
    EXPECT_FALSE(IsNonTradingDay({2027, 1, 27}, &holidays));
    EXPECT_FALSE(IsNonTradingDay({2027, 1, 26}, nullptr));
    EXPECT_FALSE(IsNonTradingDay({2027, 1, 26}, &none));
    EXPECT_TRUE(IsNonTradingDay({2027, 1, 30}, nullptr));
    EXPECT_TRUE(IsNonTradingDay({2027, 1, 31}, nullptr));
    EXPECT_EQ(WeekdayName({2027, 1, 30}), "Sat");
    EXPECT_EQ(WeekdayName({2027, 1, 26}), "Tue");
}

TEST(FormatRupees, GroupsAsTheMarketDoes) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {0, "0.00"},
        {5, "0.05"},
        {99999, "999.99"},
        {100000, "1,000.00"},
        {9999999, "99,999.99"},
        {10000000, "1,00,000.00"},
        {123456750, "12,34,567.50"},
        {100000000000, "1,00,00,00,000.00"},
    };
    for (const auto& [paise, text] : rows)
        EXPECT_EQ(FormatRupees(paise), text);
}

TEST(DescribePlan, SaysNumberDatesAndTotal) {
    const Plan plan{{2027, 1, 31}, "monthly", 12};
    const std::string dates = "12 planned from 31-Jan-2027 to 31-Dec-2027";
    struct Row {
        const char* action;
        const char* investType;
        const char* value;
        std::string text;
    };
    const Row rows[] = {
        {"SIP", "value", "123450", dates + "\nTotal outlay Rs 14,814.00"},
        {"SWP", "value", "123450", dates + "\nTotal withdrawal Rs 14,814.00"},
        {"SIP", "qty", "25", dates + "\nTotal quantity 300"},
        {"SIP", "value", "", dates},
        {"SIP", "qty", "9223372036854775807", dates},
    };
    for (const Row& row : rows)
        EXPECT_EQ(DescribePlan(plan, row.action, row.investType, row.value), row.text);
    EXPECT_EQ(DescribePlan({{2027, 1, 31}, "", 12}, "SIP", "value", "1"), "");
    EXPECT_EQ(DescribePlan({{2027, 1, 31}, "yearly", 99999}, "SIP", "value", ""),
              "99999 planned from 31-Jan-2027 to ...");
}

} // namespace
} // namespace planfold

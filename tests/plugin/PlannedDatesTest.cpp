#include "plugin/orderentry/ModifyPlan.h"

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
        {"weekly", {2027, 2, 22}, 3, "22-Feb-2027 01-Mar-2027 08-Mar-2027"},
        {"monthly", {2027, 1, 31}, 5, "31-Jan-2027 28-Feb-2027 31-Mar-2027 30-Apr-2027 31-May-2027"},
        {"monthly", {2027, 12, 30}, 4, "30-Dec-2027 30-Jan-2028 29-Feb-2028 30-Mar-2028"},
        {"yearly", {2028, 2, 29}, 5, "29-Feb-2028 28-Feb-2029 28-Feb-2030 28-Feb-2031 29-Feb-2032"},
        {"yearly", {9998, 3, 10}, 5, "10-Mar-9998 10-Mar-9999"},
        {"Monthly", {2027, 1, 31}, 5, ""},
        {"daily", {2027, 1, 31}, 0, ""},
        {"daily", {2027, 2, 30}, 3, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Dates({row.start, row.frequency, row.instalments}), row.dates)
            << row.frequency << " " << FormatPlannedDate(row.start);
}

TEST(PlannedNote, SaysWhereTheServerMovesARun) {
    const std::uint32_t dates[] = {20270126, 20270503};
    const NonTradingDates holidays{2, 0, dates};
    const NonTradingDates none{5, 0, nullptr};
    const Plan daily{{2027, 4, 30}, "daily", 5}, january{{2027, 1, 26}, "monthly", 2};
    EXPECT_EQ(PlannedNote(daily, 0, ClosedDays(&holidays)), "");
    EXPECT_EQ(PlannedNote(daily, 1, ClosedDays(&holidays)), "Non-trading day, due 01-May, expected 04-May");
    EXPECT_EQ(PlannedNote(daily, 4, ClosedDays(&holidays)), "Due 04-May, expected 07-May");
    EXPECT_EQ(PlannedNote(january, 0, ClosedDays(&holidays)), "Non-trading day, due 26-Jan, expected 27-Jan");
    EXPECT_EQ(PlannedNote(january, 0, ClosedDays(&none)), "");
    EXPECT_EQ(WeekdayName({2027, 1, 30}), "Sat");
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

SipRegistration Running(const char* frequency, const char* start, const char* next, const char* end) {
    SipRegistration registration;
    registration.frequency = frequency;
    registration.startDate = start;
    registration.nextExecutionDate = next;
    registration.endDate = end;
    return registration;
}

// Worked out by hand with a calendar.
TEST(ProgressOf, CountsWhatHasRunByTheDates) {
    struct Row {
        const char *frequency, *start, *next, *end;
        std::int64_t periods;
        const char* progress; // run, place, exact; or none
    };
    const Row rows[] = {
        {"monthly", "05-Mar-2027", "05-Mar-2027", "05-Dec-2028", 22, "0 0 exact"},
        {"monthly", "05-Mar-2027", "05-Jul-2028", "05-Dec-2028", 22, "16 16 exact"},
        {"monthly", "05-Mar-2027", "07-Jul-2028", "05-Dec-2028", 22, "16 16 exact"}, // moved by a holiday
        {"monthly", "31-Jan-2027", "28-Feb-2027", "", 12, "1 1 exact"},
        {"monthly", "05-Mar-2027", "05-Jul-2028", "05-Feb-2029", 22, "14 16 about"}, // two lapsed
        {"monthly", "05-Mar-2027", "05-Jul-2028", "05-Nov-2028", 22, "16 16 about"}, // another's end
        {"yearly", "29-Feb-2028", "28-Feb-2029", "28-Feb-2030", 3, "1 1 exact"},
        {"weekly", "06-Mar-2027", "15-Mar-2027", "10-Apr-2027", 6, "1 1 exact"}, // Saturday to Monday
        {"weekly", "01-Mar-2027", "09-Mar-2027", "05-Apr-2027", 6, "1 1 about"}, // a closed Monday
        {"daily", "01-Mar-2027", "01-Mar-2027", "22-Mar-2027", 22, "0 0 exact"},
        {"daily", "01-Mar-2027", "15-Mar-2027", "22-Mar-2027", 22, "10 10 about"},
        {"daily", "01-Mar-2027", "02-Mar-2027", "22-Mar-2027", 22, "1 1 about"},   // the server closes days too
        {"daily", "01-Mar-2027", "01-Jun-2027", "22-Mar-2027", 22, "21 66 about"}, // one is left at least
        {"monthly", "05-Mar-2027", "", "05-Dec-2028", 22, "none"},
        {"fortnightly", "05-Mar-2027", "05-Jul-2028", "", 22, "none"},
    };
    for (const Row& row : rows) {
        const auto progress =
            ProgressOf(Running(row.frequency, row.start, row.next, row.end), row.periods, ClosedDays());
        EXPECT_EQ(progress ? std::to_string(progress->done) + " " + std::to_string(progress->place)
                                 + (progress->exact ? " exact" : " about")
                           : "none",
                  row.progress)
            << row.frequency << " " << row.start << " " << row.next;
    }
}

TEST(DescribeModification, SaysWhatIsLeftNewBesideOld) {
    const std::string sixLeft = "6 of 22 left: ";
    const std::string dates = "\nNext 05-Jul-2028, last planned 05-Dec-2028";
    struct Row {
        const char* next;
        ModifiedPlan plan; // without its progress
        std::string text;
        const char* listed; // "number date note", the first and the last row
    };
    const auto plan = [](std::int64_t periods, const char* investType, const char* before, const char* now) {
        return ModifiedPlan{22, periods, std::nullopt, "SIP", investType, before, now};
    };
    ModifiedPlan withdrawn = plan(22, "value", "150000", "150000");
    withdrawn.action = "SWP";
    withdrawn.paused = true;
    const char* next = "05-Jul-2028";
    const char* asItWas = "17 05-Jul-2028 |22 05-Dec-2028 ";
    const Row rows[] = {
        {next, plan(22, "value", "150000", "300000"),
         sixLeft + "Rs 3,000.00 a run instead of 1,500.00" + dates
             + "\nOutlay to come Rs 18,000.00 instead of 9,000.00",
         asItWas},
        {next, plan(30, "qty", "15", "15"),
         "14 of 30 left instead of 6 of 22: quantity 15 a run\nNext 05-Jul-2028, last planned 05-Aug-2029 "
         "instead of "
         "05-Dec-2028\nQuantity to come 210 instead of 90",
         "17 05-Jul-2028 |30 05-Aug-2029 Added, non-trading day, due 05-Aug, expected 06-Aug"},
        {next, plan(16, "value", "150000", "300000"),
         "16 have run, so that 16 are too few: Rs 3,000.00 a run instead of 1,500.00",
         "17 05-Jul-2028 Dropped|22 05-Dec-2028 Dropped"},
        {next, withdrawn,
         sixLeft + "Rs 1,500.00 a run\nPaused, last planned 05-Dec-2028\nWithdrawal to come Rs 9,000.00",
         asItWas},
        {"", plan(30, "value", "150000", "300000"),
         "30 registered instead of 22: Rs 3,000.00 a run instead of 1,500.00",
         "1 05-Mar-2027 |30 05-Aug-2029 Non-trading day, due 05-Aug, expected 06-Aug"},
    };
    for (const Row& row : rows) {
        const SipRegistration registration = Running("monthly", "05-Mar-2027", row.next, "05-Dec-2028");
        ModifiedPlan modified = row.plan;
        modified.progress = ProgressOf(registration, modified.periodsBefore, ClosedDays());
        const Plan toCome = PlanToCome(registration, modified);
        EXPECT_EQ(DescribeModification(modified, toCome), row.text);
        std::string listed;
        for (const std::int64_t at : {std::int64_t{0}, toCome.Rows() - 1}) {
            const auto date = PlannedDate(toCome, at);
            listed += (at ? "|" : "") + std::to_string(toCome.done + at + 1) + " "
                      + (date ? FormatPlannedDate(*date) : "?") + " " + PlannedNote(toCome, at, ClosedDays());
        }
        EXPECT_EQ(listed, row.listed);
    }
    ModifiedPlan daily = plan(22, "value", "150000", "150000");
    daily.progress = Progress{10, 14, {2027, 3, 15}, false};
    EXPECT_TRUE(DescribeModification(daily, {}).starts_with("About 12 of 22 left: Rs 1,500.00 a run"));
}

} // namespace
} // namespace planfold

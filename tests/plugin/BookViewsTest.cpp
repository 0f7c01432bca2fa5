// What the book shows beyond its rows: the ready views, and the free part of its status line.
#include "plugin/orderbook/BookConditions.h"
#include "plugin/orderbook/BookStatus.h"

#include <gtest/gtest.h>

namespace planfold {
namespace {

TEST(BookConditions, TellRowsByTheirDates) {
    struct Row {
        const char *status, *frequency, *next, *end, *user;
        const char* meets; // a letter for each condition
    };
    // Today is Thursday, 10-Jun-2027.
    const Row rows[] = {
        {"active", "monthly", "10-Jun-2027", "10-Jun-2028", "ME", "D7---m"},
        {"active", "monthly", "17-Jun-2027", "17-Aug-2027", "ME", "-73--m"},
        {"active", "monthly", "18-Jun-2027", "18-Sep-2027", "YOU", "------"},
        {"active", "weekly", "09-Jun-2027", "23-Jun-2027", "ME", "--3-Nm"},
        {"active", "weekly", "11-Jun-2027", "02-Jul-2027", "ME", "-7---m"},
        {"active", "daily", "11-Jun-2027", "15-Jun-2027", "ME", "-73--m"},
        {"active", "daily", "11-Jun-2027", "16-Jun-2027", "ME", "-7---m"},
        {"active", "yearly", "31-Dec-2027", "31-Dec-2029", "ME", "--3--m"},
        {"active", "daily", "11-Jun-2027", "31-Dec-9999", "ME", "-7---m"},
        {"Paused", "monthly", "10-May-2027", "10-Jun-2030", "ME", "---P-m"},
        {"Paused", "monthly", "11-May-2027", "10-Jun-2030", "ME", "-----m"},
        {"Paused", "monthly", "10-Jun-2027", "10-Jun-2030", "ME", "-----m"},
        {"cancelled", "monthly", "10-Jun-2027", "10-Jun-2027", "ME", "-----m"},
        {"canceled", "monthly", "01-Jun-2027", "10-Jun-2027", "ME", "-----m"},
        {"expired", "monthly", "01-Jun-2027", "01-Jun-2027", "", "------"},
        {"active", "monthly", "31-Jun-2027", "", "ME", "-----m"},
        {"active", "monthly", "soon", "10-Jun-2027", "ME", "-----m"},
        {"active", "monthly", "10-Jun-2027", "never", "ME", "D7---m"},
    };
    for (const Row& row : rows) {
        sOrderinfo record;
        OrderChanges changes;
        changes[OrderField::sipStatus] = row.status;
        changes[OrderField::frequency] = row.frequency;
        changes[OrderField::nextExecutionDate] = row.next;
        changes[OrderField::endDate] = row.end;
        changes[OrderField::loginId] = row.user;
        record.Apply(changes);
        constexpr const char* letters = "D73PNm";
        std::string meets;
        for (std::size_t i = 0; i < BookConditions().size(); ++i)
            meets += BookConditions()[i].meets(record, {{2027, 6, 10}, "ME"}) ? letters[i] : '-';
        EXPECT_EQ(meets, row.meets) << row.status << ' ' << row.frequency << ' ' << row.next << ' ' << row.end;
    }
}

TEST(BookStatus, SaysWhatIsShownAndWhatItComesTo) {
    const std::vector<SideSum> both{{"SIP", 120, 1200000050, 30}, {"SWP", 1, 0, 1}};
    struct Row {
        BookStatus status;
        const char* text;
    };
    const Row rows[] = {
        {{29847, 29847, "", "", false, 1, {}}, ""},
        {{29847, 147, "", "", false, 0, {}}, "147 of 29,847 shown"},
        {{147, 147, "C001", "Due Today", false, 0, both},
         "147 of 147 shown (client C001, Due Today)   SIP 120: Rs 1,20,00,000.50, 30 shares   SWP 1: 1 share"},
        {{3, 3, "", "", false, 2, std::vector<SideSum>{{"", 2, 0, 0}}}, "2 selected   2: Rs 0.00"},
        {{12400, 12400, "C001", "", true, 2, both}, "Loading... 12,400"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.status.Text(), row.text);

    ConnectionNews news;
    EXPECT_EQ(news.Text(), "");
    for (const auto& [connected, time, text] :
         std::vector<std::tuple<std::optional<bool>, const char*, const char*>>{
             {true, "10:41", "Live"},
             {false, "10:42", "No connection since 10:42"},
             {false, "10:43", "No connection since 10:42"},
             {true, "10:44", "Live"},
             {std::nullopt, "10:45", ""}}) {
        news.Hear(connected, time);
        EXPECT_EQ(news.Text(), text);
    }

    BookFilling filling;
    filling.Begin();
    for (std::size_t second = 0; second < 30; ++second) {
        filling.OnTime(second * 100);
        ASSERT_TRUE(filling.IsUnderWay());
    }
    for (int second = 0; second < BookFilling::kPatience; ++second)
        filling.OnTime(2900);
    EXPECT_FALSE(filling.IsUnderWay()) << "an end that never came";
    filling.OnTime(2901);
    EXPECT_FALSE(filling.IsUnderWay()) << "a row that came later";
}

} // namespace
} // namespace planfold

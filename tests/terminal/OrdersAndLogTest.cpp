#include "host/terminal/core/CautionRule.h"
#include "host/terminal/core/HotKeys.h"
#include "host/terminal/core/TabbedLog.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

ScripMaster Master() {
    auto loaded = ScripMaster::Parse("exchange,series,symbol,token,trading symbol,company,decimals,multiplier,"
                                     "tick size,last price,cautionary\n"
                                     "nse_cm,EQ,CALM,1,CALM-EQ,Calm Ltd,2,100,5,1,N\n"
                                     "nse_cm,EQ,WILD,2,WILD-EQ,Wild Ltd,2,100,5,1,Y\n",
                                     "scrips.csv");
    return std::move(loaded.Value());
}

CautionOrder Order(const char* symbol) {
    return {"CL1", "value", "CNC", "100", symbol, "nse_cm"};
}

TEST(Caution, AsksOnlyForCautionaryScrips) {
    const ScripMaster master = Master();
    EXPECT_EQ(DecideCaution(master, Order("CALM-EQ")), kNotCautionary);
    EXPECT_EQ(DecideCaution(master, Order("GONE-EQ")), kCautionUndecided);
    EXPECT_EQ(DecideCaution(master, Order("WILD-EQ")), std::nullopt);
}

TEST(Caution, BasketAnswerGivesResultAndRowStates) {
    const struct {
        BasketAnswer answer;
        int result, wildState;
    } rows[] = {
        {BasketAnswer::confirm, 1, 1},
        {BasketAnswer::refuse, 0, 1},
        {BasketAnswer::leaveOut, 0, 0},
    };
    const ScripMaster master = Master();
    for (const auto& row : rows) {
        BasketCaution basket;
        basket.Add(master, Order("CALM-EQ"), 0);
        basket.Add(master, Order("WILD-EQ"), 1);
        basket.Add(master, Order("GONE-EQ"), 2);
        EXPECT_EQ(basket.CautionaryRows(), 1u);
        EXPECT_TRUE(basket.Question().starts_with("1 of 3 "));
        EXPECT_EQ(basket.Answer(row.answer), row.result);
        EXPECT_EQ(basket.StateOf("CALM-EQ", "nse_cm", 0), 2);
        EXPECT_EQ(basket.StateOf("WILD-EQ", "nse_cm", 1), row.wildState);
        EXPECT_EQ(basket.StateOf("GONE-EQ", "nse_cm", 2), 2);
        // A row that the first pass did not name like this must not go out.
        EXPECT_EQ(basket.StateOf("WILD-EQ", "nse_cm", 0), 0);
        EXPECT_EQ(basket.StateOf("WILD-EQ", "bse_cm", 1), 0);
        EXPECT_EQ(basket.StateOf("WILD-EQ", "nse_cm", 7), 0);
        basket.Clear();
        EXPECT_EQ(basket.Question(), "");
        EXPECT_EQ(basket.StateOf("WILD-EQ", "nse_cm", 1), 0);
    }
}

TEST(KeyText, NamesKeys) {
    const struct {
        const char* text;
        std::optional<KeyStroke> stroke;
    } rows[] = {
        {"del", KeyStroke{0x2E, false, false, false}},
        {"Del", KeyStroke{0x2E, false, false, false}},
        {"Shift+Tab", KeyStroke{0x09, false, false, true}},
        {"ctrl+ALT+a", KeyStroke{'A', true, true, false}},
        {"F12", KeyStroke{0x7B, false, false, false}},
        {"F25", std::nullopt},
        {"F", KeyStroke{'F', false, false, false}},
        {"F1x", std::nullopt},
        {"Hyper+A", std::nullopt},
        {"Ctrl+", std::nullopt},
        {"+", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ParseKeyStroke(row.text), row.stroke) << row.text;
    EXPECT_TRUE(IsEditingKey(*ParseKeyStroke("del")));
    EXPECT_FALSE(IsEditingKey(*ParseKeyStroke("Ctrl+Del")));
    EXPECT_FALSE(IsEditingKey(*ParseKeyStroke("F2")));
}

TEST(HotKeys, BelongToTheirWindow) {
    int memory[2];
    const auto window = [&](int index) { return reinterpret_cast<HostWindow>(&memory[index]); };
    const KeyStroke del = *ParseKeyStroke("del"), f2 = *ParseKeyStroke("F2");
    HotKeyTable table;
    table.Register({window(0), 193, del, "g", "t", "d"});
    EXPECT_EQ(table.Find(window(1), del), nullptr);
    EXPECT_EQ(table.Find(window(0), f2), nullptr);
    ASSERT_NE(table.Find(window(0), del), nullptr);
    EXPECT_EQ(table.Find(window(0), del)->command, 193);
    table.Register({window(0), 193, f2, "g", "t", "d"});
    EXPECT_EQ(table.Find(window(0), del), nullptr);
    table.Forget([&](HostWindow known) { return known != window(0); });
    EXPECT_EQ(table.Find(window(0), f2), nullptr);
}

TEST(TabbedLog, SortsLinesUnderTabs) {
    TabbedLog log;
    log.AddFromPlugin("09:00:00", "NSE BUY SIP Order : Status : Trigger Pending");
    log.AddFromPlugin("09:00:01", "Error in response : add_sip_orders . Error Code : 17");
    log.AddFromPlugin("09:00:02", "NSE BUY SIP Order Failed Status : Trigger Pending");
    log.AddFromSystem("09:00:03", "Planfold 4.5.2.10 loaded");
    EXPECT_EQ(log.Count(LogTab::all), 4u);
    EXPECT_EQ(log.Count(LogTab::orders), 1u);
    EXPECT_EQ(log.Count(LogTab::errors), 2u);
    EXPECT_EQ(log.At(LogTab::errors, 1).time, "09:00:02");
    EXPECT_EQ(log.At(LogTab::system, 0).text, "Planfold 4.5.2.10 loaded");
    EXPECT_TRUE(log.Contains("Error Code : 17"));
    EXPECT_FALSE(log.Contains("Error Code : 18"));
}

TEST(TabbedLog, DropsTheOldestLines) {
    TabbedLog log;
    log.AddFromSystem("", "first");
    for (std::size_t i = 1; i < TabbedLog::kMostLines; ++i)
        log.AddFromPlugin("", std::to_string(i));
    EXPECT_TRUE(log.Contains("first"));
    log.AddFromPlugin("", "last but one");
    log.AddFromSystem("", "last");
    EXPECT_FALSE(log.Contains("first"));
    EXPECT_EQ(log.Count(LogTab::all), TabbedLog::kMostLines);
    EXPECT_EQ(log.At(LogTab::all, 0).text, "2");
    EXPECT_EQ(log.At(LogTab::orders, 0).text, "2");
    ASSERT_EQ(log.Count(LogTab::system), 1u);
    EXPECT_EQ(log.At(LogTab::system, 0).text, "last");
}

} // namespace
} // namespace vesk

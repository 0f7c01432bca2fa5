#include "host/terminal/core/CommandLine.h"
#include "host/terminal/core/FrameLayout.h"
#include "host/terminal/core/TerminalState.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace vesk {
namespace {

std::string Tops(const FrameLayout& layout) {
    std::string result;
    for (const Band& band : layout.Bands())
        result += std::to_string(band.top) + '+' + std::to_string(band.height) + ' ';
    return result;
}

FrameLayout Frame() {
    FrameLayout layout(5);
    layout.Bands() = {
        {.least = 40},
        {.least = 90, .stretch = true, .resizable = true},
        {.wanted = 250, .least = 110, .resizable = true},
        {.wanted = 170, .least = 90, .resizable = true},
    };
    return layout;
}

TEST(FrameLayout, SharesTheHeight) {
    const struct {
        int height;
        std::array<bool, 4> shown;
        const char* tops;
    } rows[] = {
        {700, {true, true, true, true}, "0+40 40+230 275+250 530+170 "},
        {700, {true, true, false, true}, "0+40 40+485 525+0 530+170 "},
        {700, {true, true, false, false}, "0+40 40+660 700+0 700+0 "},
        {700, {true, false, false, true}, "0+40 40+0 40+0 40+660 "},
        {700, {true, false, true, true}, "0+40 40+0 40+250 295+405 "},
        {700, {true, false, false, false}, "0+40 40+0 40+0 40+0 "},
        // The lowest gives way first, then the one above it; never below their least.
        {500, {true, true, true, true}, "0+40 40+90 135+250 390+110 "},
        {400, {true, true, true, true}, "0+40 40+90 135+170 310+90 "},
        {100, {true, true, true, true}, "0+40 40+90 135+110 250+90 "},
    };
    for (const auto& row : rows) {
        FrameLayout layout = Frame();
        for (std::size_t i = 0; i < row.shown.size(); ++i)
            layout.Bands()[i].shown = row.shown[i];
        layout.Arrange(row.height);
        EXPECT_EQ(Tops(layout), row.tops) << row.height;
    }
}

TEST(FrameLayout, SplittersAreDragged) {
    FrameLayout layout = Frame();
    layout.Arrange(700);
    EXPECT_EQ(layout.SplitterAt(269), std::nullopt);
    EXPECT_EQ(layout.SplitterAt(270), 2u);
    EXPECT_EQ(layout.SplitterAt(274), 2u);
    EXPECT_EQ(layout.SplitterAt(275), std::nullopt);
    EXPECT_EQ(layout.SplitterAt(40), std::nullopt);
    layout.Drag(2, 300);
    EXPECT_EQ(Tops(layout), "0+40 40+255 300+225 530+170 ");
    layout.Drag(2, 0); // the watch keeps its least height
    EXPECT_EQ(Tops(layout), "0+40 40+90 135+390 530+170 ");
    layout.Drag(3, 10'000); // so does the log
    EXPECT_EQ(layout.Bands()[3].height, 90);
}

TEST(CommandLine, ReadsOptions) {
    const char* const words[] = {"--script", "a.script", "--log", "out log.txt"};
    const StartOptions options = ParseCommandLine(words);
    EXPECT_EQ(options.scriptFile, "a.script");
    EXPECT_EQ(options.logFile, "out log.txt");
    EXPECT_EQ(options.journal, "");
    EXPECT_EQ(options.fault, "");
    const char* const unknown[] = {"--log", "x", "/script"};
    EXPECT_EQ(ParseCommandLine(unknown).fault, "unknown option /script");
    const char* const cut[] = {"--journal"};
    EXPECT_EQ(ParseCommandLine(cut).fault, "--journal needs a path");
}

class TerminalFolder : public testing::Test {
protected:
    void SetUp() override {
        m_folder = std::filesystem::path(testing::TempDir())
                   / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    void Put(const char* name, const char* text) {
        ASSERT_TRUE(WriteWholeFile((m_folder / name).string(), text));
    }

    std::filesystem::path m_folder;
};

TEST_F(TerminalFolder, RunsWithoutWhatIsMissing) {
    TerminalState state;
    const auto fatal = state.Load(m_folder.string(), m_folder.string());
    ASSERT_TRUE(fatal);
    EXPECT_EQ(fatal->Text(), "terminal.json: file not found");

    Put("terminal.json", R"({"rights": {"QV": true, "QV: X": false}})");
    Put("clients.csv", "client,name,mapped\nCL1,A,maybe\n");
    TerminalState bare;
    ASSERT_FALSE(bare.Load(m_folder.string(), m_folder.string()));
    std::string faults;
    for (const FileFault& fault : bare.faults)
        faults += fault.Text() + '\n';
    EXPECT_EQ(faults, "scrips.csv: file not found\n"
                      "clients.csv:2: mapped \"maybe\" is neither Y nor N\n"
                      "nontrading.csv: file not found\n");
    EXPECT_TRUE(bare.HasRight("QV"));
    EXPECT_FALSE(bare.HasRight("QV: X"));
    EXPECT_FALSE(bare.HasRight("QV: Y"));
    EXPECT_EQ(bare.NonTrading().count, 0u);
    EXPECT_EQ(bare.NonTrading().dates, nullptr);
    int count = 7;
    EXPECT_EQ(bare.SearchClients(1, "", count), nullptr);
    EXPECT_EQ(count, 0);
}

TEST_F(TerminalFolder, KeepsTheCalendarWhenTheNewOneIsBad) {
    Put("terminal.json", "{}");
    Put("nontrading.csv", "date,occasion\n2027-01-26,A\n");
    TerminalState state;
    ASSERT_FALSE(state.Load(m_folder.string(), m_folder.string()));
    const NonTradingDates& dates = state.NonTrading();
    Put("nontrading.csv", "date,occasion\n2027-01-26,A\n2027-03-19,B\n");
    EXPECT_FALSE(state.ReloadCalendar());
    ASSERT_EQ(dates.count, 2u);
    EXPECT_EQ(dates.dates[1], 20270319u);
    Put("nontrading.csv", "date,occasion\n2027-01-99,A\n");
    EXPECT_TRUE(state.ReloadCalendar());
    ASSERT_EQ(dates.count, 2u);
    EXPECT_EQ(dates.dates[0], 20270126u);
}

TEST(TerminalState, FillsTheBoundaryRecords) {
    TerminalState state;
    ASSERT_FALSE(state.Load(DATA_FOLDER, testing::TempDir()));
    const Scrip& first = state.master.Scrips().front();
    ScripDetails details{};
    ASSERT_TRUE(state.FillDetails("NSE", first.tradingSymbol, details));
    EXPECT_EQ(details.token, first.token);
    EXPECT_EQ(details.tradingSymbol, first.tradingSymbol);
    EXPECT_EQ(details.priceMultiplier, 100.0);
    EXPECT_FALSE(state.FillDetails("NSE", "NOWHERE-EQ", details));
    int count = 0;
    const ClientResult* found = state.SearchClients(1, "CL100(", count);
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(found[0].clientId, "CL100");
}

} // namespace
} // namespace vesk

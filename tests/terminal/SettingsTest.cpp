#include "host/terminal/core/Settings.h"
#include "host/files/Files.h"
#include "host/market/TerminalConfig.h"
#include "host/terminal/core/TerminalState.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vesk {
namespace {

class TerminalFolder : public testing::Test {
protected:
    void SetUp() override {
        m_folder = std::filesystem::path(testing::TempDir()) / u8"Wertpapiere Ł 株式"
                   / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    std::string File(const char* name) const { return TextOfPath(m_folder / name); }
    std::string Path() const { return File("settings.json"); }

    std::filesystem::path m_folder;
};

TEST_F(TerminalFolder, PutsABadFileAside) {
    const struct {
        const char* text;
        const char* fault;
    } rows[] = {
        {"{\n  \"s\": {\n    \"k\": \n  }\n}", "settings.json:4: this is not JSON"},
        {"", "settings.json:1: this is not JSON"},
        {"[]", "settings.json:1: an object { } is expected"},
        {"{\"s\": {\n\"k\": 1}}", "settings.json:2: \"s\", \"k\" is not a text"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(WriteWholeFile(Path(), row.text));
        UserSettings settings;
        const auto fault = settings.Open(Path());
        ASSERT_TRUE(fault) << row.text;
        EXPECT_EQ(fault->Text(), row.fault);
        EXPECT_TRUE(settings.Write("s", "k", "v"));
        EXPECT_EQ(ReadWholeFile(Path() + ".bad").Value(), row.text);
    }
}

TEST_F(TerminalFolder, KeepsTheValueWhenTheFileCannotBeWritten) {
    UserSettings settings;
    settings.Open(File("missing/settings.json"));
    EXPECT_FALSE(settings.Write("s", "k", "v"));
    EXPECT_EQ(settings.Read("s", "k"), "v");
}

TEST(TerminalConfig, FaultsNameTheMember) {
    const struct {
        const char* text;
        const char* fault;
    } rows[] = {
        {"{\n\"loginMode\": 1,\n\"loginId\": 1}", "terminal.json:3: \"loginId\" is not a text"},
        {R"({"loginMode": 1.5})", "terminal.json:1: \"loginMode\" is not a whole number between 0 and 4"},
        {R"({"clientOverview": 1})", "terminal.json:1: \"clientOverview\" is neither true nor false"},
        {R"({"products": ["CNC", 1]})", "terminal.json:1: \"products\" holds something that is not a text"},
        {R"({"rights": []})", "terminal.json:1: \"rights\" is not an object"},
        {"{\n\"loginId\"\n}", "terminal.json:3: this is not JSON"},
        {"{\n\"loginId\": \"A,\n\"loginMode\": 1}", "terminal.json:2: this is not JSON"},
        {"{\n\"rights\": {\"loginMode\": true},\n\"loginMode\": 1e999\n}",
         "terminal.json:3: a number is too large"},
        {"{\n\"rights\": {\"loginMode\": true},\n\"products\": [\"CNC\", \"loginMode\",\n1\n]}",
         "terminal.json:4: \"products\" holds something that is not a text"},
    };
    for (const auto& row : rows) {
        const auto loaded = TerminalConfig::Parse(row.text, "data/terminal.json");
        ASSERT_FALSE(loaded) << row.text;
        EXPECT_EQ(loaded.Fault().Text(), row.fault);
    }
}

TEST_F(TerminalFolder, RunsWithoutWhatIsMissing) {
    TerminalState state;
    const auto fatal = state.Load(TextOfPath(m_folder), TextOfPath(m_folder));
    ASSERT_TRUE(fatal);
    EXPECT_EQ(fatal->Text(), "terminal.json: file not found");

    WriteWholeFile(File("terminal.json"), "\xEF\xBB\xBF{\"rights\": {\"QV\": true, \"QV: X\": false}}");
    WriteWholeFile(File("clients.csv"), "\xEF\xBB\xBF"
                                        "client,name,mapped\nCL1,A,maybe\n");
    WriteWholeFile(File("scrips.csv"), "\xFF\xFE"
                                       "e");
    TerminalState bare;
    ASSERT_FALSE(bare.Load(TextOfPath(m_folder), TextOfPath(m_folder)));
    std::string faults;
    for (const FileFault& fault : bare.faults)
        faults += fault.Text() + '\n';
    EXPECT_EQ(faults, "scrips.csv: this is UTF-16 text; save it as UTF-8\n"
                      "clients.csv:2: mapped \"maybe\" is neither Y nor N\n"
                      "nontrading.csv: file not found\n");

    WriteWholeFile(File("nontrading.csv"), "date,occasion\n2027-01-26,A\n2026-12-25,B\n");
    const std::uint32_t restricted[] = {20270127, 20261225, 20270101};
    EXPECT_FALSE(bare.ReloadCalendar(restricted));
    const NonTradingDates& days = bare.NonTrading();
    EXPECT_EQ(std::vector(days.dates, days.dates + days.count),
              (std::vector<std::uint32_t>{20261225, 20270101, 20270126, 20270127}));
}

TEST(CommandLine, ReadsOptions) {
    const std::string words[] = {"--script", "a.script", "--log", "out log.txt", "--server", "localhost:7040",
                                 "--secrets", "s"};
    const StartOptions options = ParseCommandLine(words);
    EXPECT_EQ(options.scriptFile, "a.script");
    EXPECT_EQ(options.logFile, "out log.txt");
    EXPECT_EQ(options.journal, "");
    EXPECT_EQ(options.serverHost, "localhost");
    EXPECT_EQ(options.serverPort, 7040);
    EXPECT_EQ(options.secretsFile, "s");
    EXPECT_EQ(options.fault, "");
    const struct {
        std::vector<std::string> words;
        std::string fault;
    } rows[] = {
        {{"--log", "x", "/script"}, "\"/script\" is one word too many"},
        {{"--journal"}, "--journal needs a path"},
        {{"--server", "localhost"}, "--server does not take \"localhost\""},
        {{"--server", "localhost:70400"}, "--server does not take \"localhost:70400\""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ParseCommandLine(row.words).fault, row.fault);
}

} // namespace
} // namespace vesk

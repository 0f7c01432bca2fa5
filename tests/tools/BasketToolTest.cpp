// planfold-basket as it is called: what it prints, writes and answers.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

struct Ended {
    int status;
    std::string printed; // on both streams
};

// Runs in a shell, with "$S" for the option that names the scrips.
Ended Called(const std::string& words, const std::string& before = {}) {
    const std::string command = "S='--scrips " DATA_FOLDER "/scrips.csv'; cd " DATA_FOLDER "/baskets; " + before
                                + " " TOOL " " + words + " 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    std::string printed;
    std::array<char, 4096> buffer;
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe))
        printed.append(buffer.data(), got);
    return {WEXITSTATUS(pclose(pipe)), printed};
}

std::string Content(const std::string& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(BasketTool, AnswersAndPrints) {
    const struct {
        const char* before;
        const char* words;
        int status;
        const char* printed; // somewhere in it
    } cases[] = {
        {"", "--help", 0, "EXIT STATUS"},
        {"", "--version", 0, "planfold-basket 4.5.2.10\n"},
        {"", "check good.csv $S", 0,
         "60 lines read, 60 rows, 0 rejected\nbuy  48 orders, amount 39200.00, quantity 330\n"
         "sell 12 orders, amount 9800.00, quantity 100\n"},
        {"", "check good.csv $S --today 2099-01-28", 1, "good.csv:1: Invalid Date\n"},
        {"", "check good.csv $S --today 2099-01-01", 1, " 3 rejected"},
        {"", "check good.csv $S --mode daily:5,weekly:4,monthly:6,yearly:13", 1,
         "good.csv:4: Minimum SIP value is 13\n"},
        {"", "check good.csv $S --mode daily:5", 1, "good.csv:2: weekly Frequency not set\n"},
        {"head -n 2 mixed.csv |", "check - $S", 1,
         "-:1: Invalid Format\n2 lines read, 1 rows, 1 rejected\nbuy  1 orders, amount 1500.00, quantity 0\n"},
        {"printf '\\377\\n' |", "check - $S --json", 1,
         "\"reason\": \"Invalid Format\",\n      \"text\": \"\xef\xbf\xbd\""},
        {"printf '\\357\\273\\277' | cat - good.csv | head -n 9 |", "check - $S", 0, "9 rows, 0 rejected"},
        {"printf '\\377\\376C\\0' |", "check - $S", 2, "-: it is UTF-16 text; "},
        {"printf 'x\\0y\\n' |", "check - $S --rejects /dev/stdout | od -c", 0, "x  \\0   y  \\n"},
        {"", "import branch.csv $S --date dd/mm/yyyy --default series=EQ", 1,
         "branch.csv:9: symbol (column 3): \"NOSUCH\" is not a scrip that the terminal knows\n"},
        {"", "import branch.csv $S --default series=EQ --json", 1,
         "may be two dates; the mapping must say the order of day and month\",\n      \"text\": "
         "\"CL100,nse_cm,EQ,ALPHATEX,,,CNC,10000000,,monthly,,,12,MKT,B,,,,, ,\",\n      \"column\": 8"},
        {"printf 'UCC,Amount\\nC1,2\\n' |", "import - $S --amount paise", 1,
         "-:2: exchange: no column says it, and no default\n2 lines"},
        {"", "import good.csv $S", 2, "good.csv: it has no line of headings"},
        {"", "import branch.csv $S --date dd/mm", 2, "--date does not take \"dd/mm\""},
        {"printf '[A]\\n' |", "import branch.csv $S --map -", 2, "-: has no mapping for these headings\n"},
        {"printf '[A]\\nx = y\\n' |", "import branch.csv $S --map -", 2, "-: line 2: x cannot be set so\n"},
        {"printf '[Basket_Limits]\namount=1,000\nRowsPerClient=3\n[basket_limits]\nTotal=0 hard\n' |",
         "check good.csv $S --limits -", 0, "good.csv: Warning: Amount above Rs 1,000.00: CL10"},
        {"printf '[Other]\nAmount=1\n[basket_limits]\nTOTAL = 48999.99 Hard\nAmount=;\n' |",
         "check good.csv $S --limits - --json", 1,
         "\"kind\": \"Fault\",\n      \"finding\": \"Total above Rs 48,999.99\""},
        {"", "check good.csv $S --limits /nowhere", 2, "nowhere: file not found"},
        {"", "check /dev/null $S", 2, "null: file not found"},
        {"", "check good.csv $S --rejects /nowhere/x", 2, "/nowhere/x: cannot be written"},
        {"", "check good.csv $S >/dev/full", 2, ""},
        {"", "template $S --lines 500 --mode weekly:70 | " TOOL " check - $S --mode weekly:70", 0, "500 rows"},
        {"O='SIP Registration No,Amount,SIP Status,Start Date,Total Period(Month(s)),As Exported';"
         "(echo $O; echo 'S1,1500.00,active,2027-03-05,22,1500.00|22|50ec5d8c0cf34d31') >/tmp/changes-$$.csv;"
         "sed 's/S1,1500.00/S1,\"2,000\"/;s/2027-03-05/05 Mar 2027/' /tmp/changes-$$.csv |",
         "changes /tmp/changes-$$.csv - --json; rm /tmp/changes-$$.csv", 0, "\"notPossible\": 1,"},
        {"", "changes good.csv", 2, "changes needs the old and the edited file"},
        {"", "changes good.csv good.csv", 2, "The column \"User ID\" is missing."},
        {"", "", 2, "a command is missing"},
        {"", "chek", 2, "unknown command"},
        {"", "check good.csv", 2, "--scrips is missing"},
        {"", "check good.csv $S mixed.csv", 2, "one word too many"},
        {"", "check good.csv $S --out x", 2, "unknown option --out"},
        {"", "check good.csv $S --today", 2, "needs a value"},
        {"", "check good.csv $S --today 2027-02-29", 2, "does not take"},
        {"", "check good.csv $S --rejects x --normalised x", 2, "same file"},
        {"", "template $S --lines 0", 2, "does not take"},
    };
    for (const auto& each : cases) {
        const Ended ended = Called(each.words, each.before);
        EXPECT_EQ(ended.status, each.status) << each.words << '\n' << ended.printed;
        EXPECT_NE(ended.printed.find(each.printed), std::string::npos) << each.words << '\n' << ended.printed;
    }
}

TEST(BasketTool, SortsTheLinesOfABasketIntoTwoFiles) {
    const fs::path folder = fs::path(testing::TempDir()) / "basket-tool";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const std::string rejects = folder / "rejects", good = folder / "good";
    const std::string outputs = " --rejects " + rejects + " --normalised " + good;
    EXPECT_EQ(Called("check mixed.csv $S" + outputs).status, 1);
    EXPECT_EQ(Called("check " + good + " $S").status, 0);
    EXPECT_NE(Called("check " + rejects + " $S").printed.find("17 lines read, 0 rows"), std::string::npos);
    // What is in the form already is written as it was.
    const std::string before = Content(good);
    EXPECT_EQ(Called("check " + good + " $S --normalised " + good).status, 0);
    EXPECT_EQ(Content(good), before);
    // A folder cannot be replaced, and no draft stays behind.
    fs::create_directories(folder / "taken" / "by");
    EXPECT_EQ(Called("check mixed.csv $S --rejects " + (folder / "taken").string()).status, 2);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 3);
}

// The manual page is the help, dressed.
TEST(BasketTool, TheManualPageSaysWhatTheHelpSays) {
    const Ended undressed = Called("--help | sed 's/^ *//' > page.help.$$; sed '1d;/^\\.[nf][fi]$/d;s/^\\.SH "
                                   "//;s/\\\\-/-/g;s/\\\\e/\\\\/g;s/^\\\\&//;s/^ *//' " MANUAL_PAGE
                                   " | diff -B page.help.$$ -; rm page.help.$$");
    EXPECT_EQ(undressed.printed, "");
}

} // namespace

#include "host/terminal/script/ScriptRunner.h"

#include <gtest/gtest.h>

#include <deque>

namespace vesk {
namespace {

TEST(Script, ReadsCommands) {
    const struct {
        const char* line;
        const char* command; // as written back; empty for a line without one
    } rows[] = {
        {"menu \"Planfold\" \"Order Entry\"", "menu \"Planfold\" \"Order Entry\""},
        {"  select 1003\tNSE # comment", "select 1003 \"NSE\""},
        {"edit 1025 \"# no comment\"", "edit 1025 \"# no comment\""},
        {"edit 1025 \"\"", "edit 1025 \"\""},
        {R"(box "a \"b\" \\ c\nd" Yes)", R"(box "a \"b\" \\ c\nd" Yes)"},
        {"expect combo 1026 daily weekly", "expect combo 1026 \"daily\" \"weekly\""},
        {"key Shift+Tab", "key Shift+Tab"},
        {"execute 5", "execute 5"},
        {"execute 5 SIP1", "execute 5 \"SIP1\""},
        {"", ""},
        {"# only a comment", ""},
    };
    for (const auto& row : rows) {
        const auto script = Script::Parse(row.line, "a.script");
        ASSERT_TRUE(script) << row.line << ": " << script.Fault().Text();
        const auto& commands = script.Value().commands;
        ASSERT_EQ(commands.size(), *row.command ? 1u : 0u) << row.line;
        for (const ScriptCommand& command : commands)
            EXPECT_EQ(command.Text(), row.command);
    }
}

TEST(Script, FaultsNameFileAndLine) {
    const struct {
        const char* text;
        const char* fault;
    } rows[] = {
        {"exit\n\nfly away", "a.script:3: unknown command \"fly\""},
        {"type \"a\\t\"", "a.script:1: unknown escape \\t"},
        {"press", "a.script:1: \"press\" takes 1 words, 0 found"},
        {"press OK", "a.script:1: \"OK\" is not a whole number"},
        {"menu File", "a.script:1: \"menu\" takes at least 2 words, 1 found"},
        {"key Enterr", "a.script:1: \"Enterr\" is not a key"},
        {"right \"QV\" yes", "a.script:1: \"yes\" is neither on nor off"},
        {"dock Book middle", "a.script:1: \"middle\" is not a pane's place"},
        {"answer Maybe", "a.script:1: \"Maybe\" is not an answer"},
    };
    for (const auto& row : rows) {
        const auto script = Script::Parse(row.text, "tests/a.script");
        ASSERT_FALSE(script) << row.text;
        EXPECT_EQ(script.Fault().Text(), row.fault);
    }
}

// A row of the table begins so: | `expect text N TEXT` |
TEST(Script, DocumentsEveryVerb) {
    const auto text = ReadTextFile(DATA_FOLDER "/../docs/scripts.md");
    ASSERT_TRUE(text) << text.Fault().Text();
    for (const VerbRule& rule : VerbRules()) {
        const std::string row = "\n| `" + std::string(rule.name) + (rule.words.empty() ? "` | " : " ");
        EXPECT_NE(text.Value().find(row), std::string::npos) << rule.name;
    }
}

class Boxes : public ScriptStage {
public:
    explicit Boxes(std::deque<std::string> texts) : open(std::move(texts)) {}

    StepResult Try(const ScriptCommand&, std::size_t) override { return StepResult::Done(); }
    std::optional<OpenMessageBox> OpenBox() override {
        if (open.empty()) return std::nullopt;
        return OpenMessageBox{open.size(), open.front()};
    }
    bool AnswerBox(int) override {
        open.pop_front();
        return true;
    }
    std::int64_t ProcessorMs() override { return 0; }
    void Report(const std::string&) override {}

    std::deque<std::string> open; // one after the other
};

TEST(ScriptRunner, KnowsABoxByItsText) {
    const struct {
        const char* text;
        const char* verdict;
        std::size_t left; // boxes
    } rows[] = {
        {"expect box A1\nbox starting A Yes\nexpect box B\nanswer OK", "script passed", 0},
        {"expect box-starting A\nexpect box A1\nanswer OK\nbox B OK", "script passed", 0},
        {"expect box A1\nexpect box A",
         "script failed: a.script:2: timed out: the message box \"A1\" is not \"A\"", 2},
        {"expect box A1\nbox B OK", "script failed: a.script:2: timed out: the message box \"A1\" is not \"B\"",
         2},
        {"press 1", "script failed: a.script:1: unexpected message box \"A1\"", 2},
        {"box A1 OK", "script failed: a.script:1: unexpected message box \"B\"", 1},
    };
    for (const auto& row : rows) {
        Boxes stage({"A1", "B"});
        ScriptRunner runner(Script::Parse(row.text, "a.script").Value(), stage);
        for (std::int64_t now = 0; runner.Tick(now) == ScriptRunner::State::running; now += 1000)
            ASSERT_LT(now, 2 * ScriptRunner::kUsualTimeoutMs * 10);
        EXPECT_EQ(runner.Verdict(), row.verdict);
        EXPECT_EQ(stage.open.size(), row.left) << row.text;
    }
}

} // namespace
} // namespace vesk

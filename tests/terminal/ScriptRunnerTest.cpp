#include "host/terminal/core/ScriptRunner.h"

#include <gtest/gtest.h>

#include <deque>

namespace vesk {
namespace {

// Answers each command from a list; a box opens when a "press" names one.
class FakeStage : public ScriptStage {
public:
    std::deque<StepResult> results; // when empty: done
    std::deque<OpenMessageBox> boxes;
    std::vector<std::string> tried, reported;
    std::vector<int> answers;
    bool boxHasButton = true;
    bool boxStays = false;

    StepResult Try(const ScriptCommand& command, std::size_t attempt) override {
        tried.push_back(command.Text() + '@' + std::to_string(attempt));
        if (results.empty()) return StepResult::Done();
        const StepResult result = results.front();
        results.pop_front();
        return result;
    }
    std::optional<OpenMessageBox> OpenBox() override {
        if (boxes.empty()) return std::nullopt;
        return boxes.front();
    }
    bool AnswerBox(int button) override {
        answers.push_back(button);
        if (boxHasButton && !boxStays) boxes.pop_front();
        return boxHasButton;
    }
    void Report(const std::string& line) override { reported.push_back(line); }
};

std::string Play(const char* text, FakeStage& stage, int ticks = 50, std::int64_t stepMs = 1000) {
    ScriptRunner runner(Script::Parse(text, "a.script").Value(), stage);
    for (int i = 0; i < ticks; ++i)
        if (runner.Tick(i * stepMs) != ScriptRunner::State::running) return runner.Verdict();
    return "still running";
}

TEST(ScriptRunner, PlaysStepsInOrderAndStopsAtExit) {
    FakeStage stage;
    EXPECT_EQ(Play("press 1\npress 2\nexit\npress 3", stage), "script passed");
    EXPECT_EQ(stage.tried, (std::vector<std::string>{"press 1@0", "press 2@0"}));
    EXPECT_EQ(stage.reported, (std::vector<std::string>{"a.script:1: press 1", "a.script:2: press 2"}));
}

TEST(ScriptRunner, TriesAgainUntilTheTimeIsOver) {
    FakeStage stage;
    stage.results.assign(3, StepResult::Again("not there"));
    EXPECT_EQ(Play("press 1", stage), "script passed");
    EXPECT_EQ(stage.tried.back(), "press 1@3");

    FakeStage never;
    never.results.assign(50, StepResult::Again("not there"));
    EXPECT_EQ(Play("press 1", never), "script failed: a.script:1: timed out: not there");
    EXPECT_EQ(never.tried.size(), 11u);

    FakeStage impatient;
    impatient.results.assign(50, StepResult::Again("not there"));
    EXPECT_EQ(Play("timeout 2\npress 1", impatient), "script failed: a.script:2: timed out: not there");
    EXPECT_EQ(impatient.tried.size(), 3u);
}

TEST(ScriptRunner, TellsWhereAStepFailed) {
    FakeStage stage;
    stage.results = {StepResult::Done(), StepResult::Failed("no")};
    EXPECT_EQ(Play("press 1\n\npress 2\npress 3", stage), "script failed: a.script:3: no");
    EXPECT_EQ(stage.tried.size(), 2u);
}

TEST(ScriptRunner, MessageBoxes) {
    const struct {
        const char* script;
        std::deque<OpenMessageBox> boxes;
        const char* verdict;
        std::vector<int> answers;
    } rows[] = {
        {"press 1", {{7, "Boo"}}, "script failed: a.script:1: unexpected message box \"Boo\"", {}},
        {"box \"Boo\" Yes", {{7, "Boo"}}, "script passed", {6}},
        {"box \"Boo\" Yes", {}, "script failed: a.script:1: timed out: there is no message box \"Boo\"", {}},
        // Other commands go on while the box that comes next is already open.
        {"press 1\nbox \"Boo\" OK", {{7, "Boo"}}, "script passed", {1}},
        {"press 1\nbox \"Boo\" OK",
         {{7, "Bo"}},
         "script failed: a.script:1: unexpected message box \"Bo\"",
         {}},
        {"expect box \"Boo\"\nscreenshot a.png\nanswer No", {{7, "Boo"}}, "script passed", {7}},
        {"expect box \"Boo\"\nanswer No\npress 1",
         {{7, "Boo"}, {8, "Boo"}},
         "script failed: a.script:2: unexpected message box \"Boo\"",
         {7}},
        {"box \"Boo\" OK\nbox \"Boo\" No", {{7, "Boo"}, {8, "Boo"}}, "script passed", {1, 7}},
        {"box \"One\" OK\nbox \"Two\" OK", {{7, "One"}, {8, "Two"}}, "script passed", {1, 1}},
        {"box starting \"Bo\" OK", {{7, "Boo"}}, "script passed", {1}},
        {"expect box-starting \"Bo\"\nanswer OK", {{7, "Boo"}}, "script passed", {1}},
        {"box starting \"oo\" OK",
         {{7, "Boo"}},
         "script failed: a.script:1: unexpected message box \"Boo\"",
         {}},
        {"exit", {{7, "Boo"}}, "script failed: a.script:1: unexpected message box \"Boo\"", {}},
        {"", {{7, "Boo"}}, "script failed: a.script: unexpected message box \"Boo\"", {}},
        {"answer OK", {}, "script failed: a.script:1: timed out: there is no message box", {}},
    };
    for (const auto& row : rows) {
        FakeStage stage;
        stage.boxes = row.boxes;
        EXPECT_EQ(Play(row.script, stage), row.verdict) << row.script;
        EXPECT_EQ(stage.answers, row.answers) << row.script;
    }
}

TEST(ScriptRunner, ABoxThatCannotBeAnsweredFails) {
    FakeStage noButton;
    noButton.boxes = {{7, "Boo"}};
    noButton.boxHasButton = false;
    EXPECT_EQ(Play("box \"Boo\" No", noButton),
              "script failed: a.script:1: the message box has no such button");

    FakeStage stays;
    stays.boxes = {{7, "Boo"}};
    stays.boxStays = true;
    EXPECT_EQ(Play("box \"Boo\" OK", stays),
              "script failed: a.script:1: timed out: the message box \"Boo\" stays open");
    EXPECT_EQ(stays.answers.size(), 1u);
}

} // namespace
} // namespace vesk

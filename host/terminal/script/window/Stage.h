// Plays script commands on the program's real windows. What may open a message box is posted, never sent, so
// that the script itself is not held up by it.
#pragma once

#include "framework/Window.h"
#include "host/server/ServerCommands.h"
#include "host/terminal/core/Keys.h"
#include "host/terminal/core/Logs.h"
#include "host/terminal/script/ScriptRunner.h"

#include <optional>

namespace vesk {

class Application;

// Presses keys as if they were held down: the keyboard's state is changed until the next call.
class StageKeyboard {
public:
    void Press(const KeyStroke& stroke);
    void Release();
    static void PressInMenu(HWND popup, int key);

private:
    BYTE m_before[256] = {};
    bool m_held = false;
};

// What one command leaves behind for the next, or for its own next try.
struct Stage {
    Application& application;
    SessionLog& log;
    HWND window = nullptr; // null: the main frame
    StageKeyboard keyboard{};
    int menuSteps = -1;         // Down keys still to press in the open menu; -1 before it is open
    UINT dpi = 0;               // of the last "dpi"; 0 before the first
    HWND fileDialog = nullptr;  // has been given its path
    std::optional<Told> told{}; // of what the server was told last

    HWND Frame() const;
    HWND Current() const { return window ? window : Frame(); }
};

// One try of a command, as a verb's function gets it.
struct ScriptStep {
    Stage& stage;
    const ScriptCommand& command;
    std::size_t attempt;
    HWND control; // that the first word names; null for verbs without one

    const std::string& Word(std::size_t word) const { return command.words[word]; }
    int Number(std::size_t word) const { return command.Number(word); }
    // The words from this one on, as the checks show several texts.
    std::string WordsFrom(std::ptrdiff_t first) const;
};

namespace verbs {
#define VESK_STAGE(result, function, ...) result function(ScriptStep& step);
#define VESK_RUNNER(...)
VESK_SCRIPT_VERBS(VESK_STAGE, VESK_RUNNER)
#undef VESK_STAGE
#undef VESK_RUNNER
} // namespace verbs

StepResult Compare(const std::string& what, const std::string& found, const std::string& expected);
std::string Joined(const std::vector<std::string>& texts);

class WindowStage : public ScriptStage {
public:
    WindowStage(Application& application, SessionLog& log) : m_stage{application, log} {}

    StepResult Try(const ScriptCommand& command, std::size_t attempt) override;
    std::optional<OpenMessageBox> OpenBox() override;
    bool AnswerBox(int button) override;
    std::int64_t ProcessorMs() override;
    void Report(const std::string& line) override { m_stage.log.Write(line); }

private:
    Stage m_stage;
};

// A script with the stage that it is played on.
class ScriptPlay {
public:
    ScriptPlay(Script script, Application& application, SessionLog& log)
        : m_stage(application, log), m_runner(std::move(script), m_stage) {}
    ScriptPlay(const ScriptPlay&) = delete;
    ScriptPlay& operator=(const ScriptPlay&) = delete;

    ScriptRunner& Runner() { return m_runner; }
    // A failed script leaves the program in any state, perhaps with a box open: nothing but the end is safe.
    [[noreturn]] void Abandon(const std::string& verdict);

private:
    WindowStage m_stage;
    ScriptRunner m_runner;
};

} // namespace vesk

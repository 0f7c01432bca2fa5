// Plays a script step by step against a stage. It is called from the message loop again and again, also while
// a message box runs a loop of its own, and never waits: a step that is not yet fulfilled is tried again at the
// next call, until its time is over.
#pragma once

#include "host/terminal/script/Script.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

struct StepResult {
    enum class State { done, again, failed };

    State state;
    std::string why; // for `again`: what is missing, told when the time is over

    static StepResult Done() { return {State::done, {}}; }
    static StepResult Again(std::string why) { return {State::again, std::move(why)}; }
    static StepResult Failed(std::string why) { return {State::failed, std::move(why)}; }
};

struct OpenMessageBox {
    std::uintptr_t id = 0; // differs between boxes that are open one after the other
    std::string text;
};

// What a script is played on.
class ScriptStage {
public:
    virtual ~ScriptStage() = default;
    // Tries the command. `attempt` counts the earlier tries of this step, so that one which takes several
    // calls (typing) knows how far it is.
    virtual StepResult Try(const ScriptCommand& command, std::size_t attempt) = 0;
    virtual std::optional<OpenMessageBox> OpenBox() = 0;
    // Presses the button of the open message box; false when it has no such button.
    virtual bool AnswerBox(int button) = 0;
    // The processor's time that the program has taken so far.
    virtual std::int64_t ProcessorMs() = 0;
    // One line of what happened.
    virtual void Report(const std::string& line) = 0;
};

class ScriptRunner {
public:
    enum class State { running, passed, failed };

    ScriptRunner(Script script, ScriptStage& stage) : m_script(std::move(script)), m_stage(stage) {}

    // One step at most. `nowMs` comes from a clock that never goes back.
    State Tick(std::int64_t nowMs);

    // The program ends: a script that has something left to be played has failed. Whether it has passed.
    bool End();

    State Current() const { return m_state; }
    // "script passed", or "script failed: file:line: why".
    std::string Verdict() const;

    static constexpr std::int64_t kUsualTimeoutMs = 10'000;

private:
    StepResult TryStep(const ScriptCommand& command);
    StepResult TryBox(const ScriptCommand& command, std::optional<int> button);
    StepResult TryAnswer(int button);
    // Reports the time since the last such command, how long of it the processor worked for the program, and
    // the longest in it that the message loop left no call.
    void ReportTime(const std::string& what);
    // A box is expected when the next box command of the script has its text, or "expect box" has found it.
    bool IsExpected(const OpenMessageBox& box) const;
    void Fail(const std::string& why);

    Script m_script;
    ScriptStage& m_stage;
    State m_state = State::running;
    std::size_t m_next = 0;
    std::size_t m_attempt = 0;
    std::int64_t m_stepBegan = 0;
    std::int64_t m_timeoutMs = kUsualTimeoutMs;
    std::int64_t m_nowMs = 0;
    std::int64_t m_watchedFrom = 0, m_processorFrom = 0, m_longestPause = 0;
    std::uintptr_t m_foundBox = 0;    // by "expect box", not yet answered
    std::uintptr_t m_answeredBox = 0; // the button is pressed, the box not yet gone
    std::string m_failure;
};

} // namespace vesk

#include "host/terminal/script/ScriptRunner.h"

#include <algorithm>

namespace vesk {
namespace {

bool NamesBox(const ScriptCommand& command) {
    constexpr RunnerVerb verbs[] = {RunnerVerb::box, RunnerVerb::boxStarting, RunnerVerb::expectBox,
                                    RunnerVerb::expectBoxStarting};
    return std::ranges::find(verbs, command.Rule().runner) != std::end(verbs);
}

bool Names(const ScriptCommand& command, const std::string& boxText) {
    const RunnerVerb verb = command.Rule().runner;
    const bool starting = verb == RunnerVerb::boxStarting || verb == RunnerVerb::expectBoxStarting;
    return starting ? boxText.starts_with(command.words[0]) : boxText == command.words[0];
}

} // namespace

ScriptRunner::State ScriptRunner::Tick(std::int64_t nowMs) {
    if (m_state != State::running) return m_state;
    if (m_nowMs == 0) m_nowMs = m_watchedFrom = nowMs;
    m_longestPause = std::max(m_longestPause, nowMs - m_nowMs);
    m_nowMs = nowMs;
    if (const std::optional<OpenMessageBox> box = m_stage.OpenBox(); box && !IsExpected(*box)) {
        Fail("unexpected message box \"" + box->text + '"');
        return m_state;
    }
    if (m_next == m_script.commands.size() || m_script.commands[m_next].Rule().runner == RunnerVerb::exit)
        return m_state = State::passed;
    const ScriptCommand& command = m_script.commands[m_next];
    if (m_attempt == 0) m_stepBegan = nowMs;
    const StepResult result = TryStep(command);
    ++m_attempt;
    if (result.state == StepResult::State::done) {
        m_stage.Report(m_script.fileName + ':' + std::to_string(command.line) + ": " + command.Text());
        ++m_next;
        m_attempt = 0;
    } else if (result.state == StepResult::State::failed) {
        Fail(result.why);
    } else if (nowMs - m_stepBegan >= m_timeoutMs) {
        Fail("timed out: " + result.why);
    }
    return m_state;
}

StepResult ScriptRunner::TryStep(const ScriptCommand& command) {
    switch (command.Rule().runner) {
    case RunnerVerb::timeout:
        m_timeoutMs = std::int64_t{1000} * command.Number(0);
        return StepResult::Done();
    case RunnerVerb::stopwatch:
        ReportTime(command.words[0]);
        return StepResult::Done();
    case RunnerVerb::expectBox:
    case RunnerVerb::expectBoxStarting:
        return TryBox(command, std::nullopt);
    case RunnerVerb::box:
    case RunnerVerb::boxStarting:
        return TryBox(command, BoxButton(command.words[1]));
    case RunnerVerb::answer:
        return TryAnswer(*BoxButton(command.words[0]));
    default:
        return m_stage.Try(command, m_attempt);
    }
}

StepResult ScriptRunner::TryBox(const ScriptCommand& command, std::optional<int> button) {
    if (m_answeredBox) return TryAnswer(*button);
    const std::optional<OpenMessageBox> box = m_stage.OpenBox();
    if (!box) return StepResult::Again("there is no message box \"" + command.words[0] + '"');
    // One that an earlier command found may still be open.
    if (!Names(command, box->text))
        return StepResult::Again("the message box \"" + box->text + "\" is not \"" + command.words[0] + '"');
    m_foundBox = box->id;
    return button ? TryAnswer(*button) : StepResult::Done();
}

StepResult ScriptRunner::TryAnswer(int button) {
    const std::optional<OpenMessageBox> box = m_stage.OpenBox();
    if (!m_answeredBox) {
        if (!box) return StepResult::Again("there is no message box");
        if (!m_stage.AnswerBox(button)) return StepResult::Failed("the message box has no such button");
        m_answeredBox = box->id;
    }
    // The next box may already be there when the answered one has gone.
    if (box && box->id == m_answeredBox)
        return StepResult::Again("the message box \"" + box->text + "\" stays open");
    m_answeredBox = m_foundBox = 0;
    return StepResult::Done();
}

void ScriptRunner::ReportTime(const std::string& what) {
    const std::int64_t processorMs = m_stage.ProcessorMs();
    m_stage.Report("time " + what + ": " + std::to_string(m_nowMs - m_watchedFrom) + " ms, processor "
                   + std::to_string(processorMs - m_processorFrom) + " ms, longest pause "
                   + std::to_string(m_longestPause) + " ms");
    m_watchedFrom = m_nowMs;
    m_processorFrom = processorMs;
    m_longestPause = 0;
}

bool ScriptRunner::IsExpected(const OpenMessageBox& box) const {
    if (box.id == m_foundBox || box.id == m_answeredBox) return true;
    // The command that is being played may itself be done with, its box answered.
    const auto first =
        m_script.commands.begin() + static_cast<std::ptrdiff_t>(m_next + (m_answeredBox ? 1 : 0));
    const auto next = std::find_if(first, m_script.commands.end(), NamesBox);
    return next != m_script.commands.end() && Names(*next, box.text);
}

void ScriptRunner::Fail(const std::string& why) {
    m_state = State::failed;
    m_failure = m_script.fileName + ": " + why;
    if (m_script.commands.empty()) return;
    const std::size_t index = std::min(m_next, m_script.commands.size() - 1);
    m_failure = m_script.fileName + ':' + std::to_string(m_script.commands[index].line) + ": " + why;
}

bool ScriptRunner::End() {
    const std::size_t next = m_next + (m_answeredBox ? 1 : 0);
    const bool isPlayed =
        next >= m_script.commands.size() || m_script.commands[next].Rule().runner == RunnerVerb::exit;
    if (m_state == State::running && isPlayed) m_state = State::passed;
    if (m_state == State::running) Fail("the terminal ended");
    return m_state == State::passed;
}

std::string ScriptRunner::Verdict() const {
    return m_state == State::passed ? "script passed" : "script failed: " + m_failure;
}

} // namespace vesk

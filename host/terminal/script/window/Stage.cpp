#include "host/terminal/script/window/Stage.h"

#include "host/terminal/script/window/Screen.h"
#include "host/terminal/window/Application.h"

#include <cstdlib>
#include <type_traits>

namespace vesk {
namespace {

// A function that gives nothing is done at once.
template <auto function>
StepResult Run(ScriptStep& step) {
    if constexpr (std::is_void_v<decltype(function(step))>) {
        function(step);
        return StepResult::Done();
    } else {
        return function(step);
    }
}

// There are as many as rules; it is null where the runner plays the verb.
constexpr StepResult (*kFunctions[])(ScriptStep&) = {
#define VESK_STAGE(result, function, ...) &Run<&verbs::function>,
#define VESK_RUNNER(...) nullptr,
    VESK_SCRIPT_VERBS(VESK_STAGE, VESK_RUNNER)
#undef VESK_STAGE
#undef VESK_RUNNER
};

} // namespace

HWND Stage::Frame() const {
    return application.Frame().Handle();
}

std::string ScriptStep::WordsFrom(std::ptrdiff_t first) const {
    return Joined({command.words.begin() + first, command.words.end()});
}

StepResult Compare(const std::string& what, const std::string& found, const std::string& expected) {
    if (found == expected) return StepResult::Done();
    return StepResult::Again(what + " is \"" + found + "\", not \"" + expected + '"');
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : ", ") + text;
    return result;
}

StepResult WindowStage::Try(const ScriptCommand& command, std::size_t attempt) {
    ScriptStep step{m_stage, command, attempt, nullptr};
    if (command.Rule().words.starts_with('c')) {
        const HWND window = m_stage.Current();
        step.control = IsWindow(window) ? FindControl(window, command.Number(0)) : nullptr;
        if (!step.control) return StepResult::Again("there is no control " + command.words[0]);
    }
    return kFunctions[command.verb](step);
}

std::optional<OpenMessageBox> WindowStage::OpenBox() {
    const HWND box = FindMessageBox();
    if (!box) return std::nullopt;
    return OpenMessageBox{reinterpret_cast<std::uintptr_t>(box), MessageBoxText(box)};
}

bool WindowStage::AnswerBox(int button) {
    const HWND box = FindMessageBox(), control = MessageBoxButton(box, button);
    if (!control) return false;
    PostMessageA(box, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), BN_CLICKED),
                 reinterpret_cast<LPARAM>(control));
    return true;
}

std::int64_t WindowStage::ProcessorMs() {
    FILETIME started{}, ended{}, kernel{}, user{};
    GetProcessTimes(GetCurrentProcess(), &started, &ended, &kernel, &user);
    const auto milliseconds = [](const FILETIME& time) {
        return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime)
               / 10'000;
    };
    return milliseconds(kernel) + milliseconds(user);
}

void ScriptPlay::Abandon(const std::string& verdict) {
    const Script picture = Script::Parse("screenshot failed.png", "").Value();
    m_stage.Try(picture.commands[0], 0);
    m_stage.Report(verdict);
    ExitProcess(EXIT_FAILURE);
}

} // namespace vesk

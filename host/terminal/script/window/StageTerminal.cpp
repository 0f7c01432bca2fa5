// The verbs of the terminal itself, its server, and the system below it.
#include "host/terminal/script/window/Stage.h"

#include "host/terminal/script/window/Resources.h"
#include "host/terminal/script/window/Screen.h"
#include "host/terminal/window/Application.h"

#include <clocale>

namespace vesk::verbs {
namespace {

std::vector<HWND> ChildrenAtAnyDepth(HWND window) {
    std::vector<HWND> children;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&children));
    return children;
}

// What a move to a screen of that resolution sends. The window stays where it is, and so does the system's own
// answer to GetDpiForWindow.
void TellDpi(HWND window, UINT from, UINT to) {
    RECT suggested{};
    GetWindowRect(window, &suggested);
    const auto scaled = [&](LONG length) {
        return MulDiv(length, static_cast<int>(to), static_cast<int>(from));
    };
    suggested.right = suggested.left + scaled(suggested.right - suggested.left);
    suggested.bottom = suggested.top + scaled(suggested.bottom - suggested.top);
    const std::vector<HWND> children = ChildrenAtAnyDepth(window);
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        SendMessageA(*child, WM_DPICHANGED_BEFOREPARENT, 0, 0);
    SendMessageA(window, WM_DPICHANGED, MAKEWPARAM(to, to), reinterpret_cast<LPARAM>(&suggested));
    for (const HWND child : children)
        SendMessageA(child, WM_DPICHANGED_AFTERPARENT, 0, 0);
}

} // namespace

void ActivateClient(ScriptStep& step) {
    step.stage.application.ActivateClient(step.Word(0));
}

void SetFont(ScriptStep& step) {
    step.stage.application.SetFont(step.Number(0), step.Number(1));
}

void SetRight(ScriptStep& step) {
    step.stage.application.SetRight(step.Word(0), step.command.On(1));
}

void SetLoginMode(ScriptStep& step) {
    step.stage.application.SetLoginMode(step.Number(0));
}

StepResult TellServer(ScriptStep& step) {
    if (step.attempt == 0) {
        std::string line(step.command.Rule().name);
        for (const std::string& word : step.command.words)
            line += ' ' + word;
        step.stage.told.reset();
        step.stage.application.TellServer(line, [&stage = step.stage](const Told& told) { stage.told = told; });
    }
    if (!step.stage.told) return StepResult::Again("the server has not yet answered");
    return step.stage.told->isDone ? StepResult::Done() : StepResult::Failed(step.stage.told->text);
}

StepResult ExpectLogOff(ScriptStep& step) {
    const bool mayEnd = SendMessageA(step.stage.Frame(), WM_QUERYENDSESSION, 0, ENDSESSION_LOGOFF) != 0;
    if (mayEnd == step.command.On(0)) return StepResult::Done();
    return StepResult::Again(mayEnd ? "the session may end" : "the session may not end");
}

void LogOff(ScriptStep& step) {
    SendMessageA(step.stage.Frame(), WM_ENDSESSION, TRUE, ENDSESSION_LOGOFF);
}

StepResult TakeScreenshot(ScriptStep& step) {
    for (const HWND window : {step.stage.Current(), step.stage.Frame()})
        RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const std::string fault = SaveScreenshot(step.stage.application.Options().outFolder + '/' + step.Word(0));
    return fault.empty() ? StepResult::Done() : StepResult::Failed(fault);
}

StepResult ChangeDpi(ScriptStep& step) {
    const auto dpi = static_cast<UINT>(step.Number(0));
    if (dpi < USER_DEFAULT_SCREEN_DPI / 2 || dpi > 10 * USER_DEFAULT_SCREEN_DPI)
        return StepResult::Failed("there is no screen of that resolution");
    const UINT before = step.stage.dpi ? step.stage.dpi : step.stage.application.Frame().Self().Dpi();
    for (const HWND window : TopLevelWindows())
        TellDpi(window, before, dpi);
    step.stage.dpi = dpi;
    return StepResult::Done();
}

StepResult SetLocale(ScriptStep& step) {
    if (std::setlocale(LC_ALL, step.Word(0).c_str())) return StepResult::Done();
    return StepResult::Failed("the system knows no locale \"" + step.Word(0) + '"');
}

void Measure(ScriptStep& step) {
    const std::string name = step.command.words.empty() ? std::string() : ' ' + step.Word(0);
    step.stage.log.Write("resources" + name + ": " + Text(CountResources()) + " strings "
                         + std::to_string(step.stage.application.Strings().LiveBuffers()) + " controls "
                         + std::to_string(step.stage.application.Server().LiveControls()));
}

} // namespace vesk::verbs

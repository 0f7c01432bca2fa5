// The commands that stand for the system, or ask it.
#include "host/terminal/script/window/Resources.h"
#include "host/terminal/script/window/WindowFinder.h"
#include "host/terminal/script/window/WindowStage.h"
#include "host/terminal/window/Application.h"

#include <clocale>

namespace vesk {
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
void ChangeDpi(HWND window, UINT from, UINT to) {
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

StepResult WindowStage::Dpi(const ScriptCommand& command, std::size_t) {
    const auto dpi = static_cast<UINT>(command.Number(0));
    if (dpi < USER_DEFAULT_SCREEN_DPI / 2 || dpi > 10 * USER_DEFAULT_SCREEN_DPI)
        return StepResult::Failed("there is no screen of that resolution");
    const UINT before = m_dpi ? m_dpi : m_application.Frame().Self().Dpi();
    for (const HWND window : TopLevelWindows())
        ChangeDpi(window, before, dpi);
    m_dpi = dpi;
    return StepResult::Done();
}

StepResult WindowStage::Locale(const ScriptCommand& command, std::size_t) {
    if (std::setlocale(LC_ALL, command.words[0].c_str())) return StepResult::Done();
    return StepResult::Failed("the system knows no locale \"" + command.words[0] + '"');
}

StepResult WindowStage::Measure(const ScriptCommand& command, std::size_t) {
    const std::string name = command.words.empty() ? std::string() : ' ' + command.words[0];
    m_log.Write("resources" + name + ": " + Text(CountResources()) + " strings "
                + std::to_string(m_application.Strings().LiveBuffers()) + " controls "
                + std::to_string(m_application.Server().LiveControls()));
    return StepResult::Done();
}

} // namespace vesk

// The verbs of windows and menus.
#include "host/terminal/script/window/Stage.h"

#include "host/files/Files.h"
#include "host/terminal/script/window/Screen.h"
#include "host/terminal/window/Application.h"
#include "host/terminal/window/frame/MenuBar.h"

#include <algorithm>

namespace vesk::verbs {
namespace {

// The dialog would take it as beside the file that was opened last.
std::string BesideProgram(const std::string& path) {
    return path.find(':') == path.npos ? ProgramFolder() + '\\' + path : path;
}

// The list's context menu, asked for at the first attempt; null while it is not open.
HMENU OpenContextMenu(ScriptStep& step, HWND& popup) {
    if (step.attempt == 0) {
        step.stage.menuSteps = -1;
        SetFocus(step.control);
        PostMessageA(step.control, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(step.control), -1);
    }
    return FindOpenMenu(popup);
}

} // namespace

StepResult UseWindow(ScriptStep& step) {
    const HWND window = FindWindowByCaption(step.Word(0), step.stage.Frame());
    if (!window) return StepResult::Again("there is no window \"" + step.Word(0) + '"');
    step.stage.window = window;
    framework::Window(GetAncestor(window, GA_ROOT)).BringToFront();
    return StepResult::Done();
}

void UseMain(ScriptStep& step) {
    step.stage.window = nullptr;
    framework::Window(step.stage.Current()).BringToFront();
}

void CloseWindow(ScriptStep& step) {
    PostMessageA(step.stage.Current(), WM_CLOSE, 0, 0);
    step.stage.window = nullptr;
}

StepResult ExpectWindow(ScriptStep& step) {
    if (FindWindowByCaption(step.Word(0), step.stage.Frame())) return StepResult::Done();
    return StepResult::Again("there is no window \"" + step.Word(0) + '"');
}

StepResult ExpectNoWindow(ScriptStep& step) {
    if (!FindWindowByCaption(step.Word(0), step.stage.Frame())) return StepResult::Done();
    return StepResult::Again("there is a window \"" + step.Word(0) + '"');
}

// The system's file dialogs keep their edit under one of these identifiers, by version.
StepResult GiveFile(ScriptStep& step) {
    if (step.attempt == 0) step.stage.fileDialog = nullptr;
    if (step.stage.fileDialog) {
        if (IsWindow(step.stage.fileDialog)) return StepResult::Again("the file dialog stays open");
        return StepResult::Done();
    }
    const HWND dialog = GetActiveWindow();
    if (!dialog || !IsOfClass(dialog, "#32770")) return StepResult::Again("there is no file dialog");
    for (const int id : {0x47C, 0x480}) {
        const HWND edit = FindControl(dialog, id);
        if (!edit) continue;
        SetWindowTextW(edit, PathOf(BesideProgram(step.Word(0))).c_str());
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
        step.stage.fileDialog = dialog;
        return StepResult::Again("the file dialog stays open");
    }
    return StepResult::Again("there is no file dialog");
}

StepResult PickMenu(ScriptStep& step) {
    const HWND frame = step.stage.Frame();
    HMENU menu = GetMenu(frame);
    for (std::size_t i = 0; i < step.command.words.size(); ++i) {
        const std::vector<MenuItem> entries = MenuEntries(menu);
        const auto entry = std::ranges::find(entries, step.Word(i), &MenuItem::text);
        if (entry == entries.end() || !entry->enabled)
            return StepResult::Again("there is no menu entry \"" + step.Word(i) + '"');
        menu = entry->submenu;
        if (i + 1 == step.command.words.size()) PostMessageA(frame, WM_COMMAND, entry->id, 0);
    }
    return StepResult::Done();
}

StepResult ExpectMenu(ScriptStep& step) {
    const std::vector<MenuItem> bar = MenuEntries(GetMenu(step.stage.Frame()));
    const auto menu = std::ranges::find(bar, step.Word(0), &MenuItem::text);
    if (menu == bar.end()) return StepResult::Again("there is no menu \"" + step.Word(0) + '"');
    std::vector<std::string> found;
    for (const MenuItem& entry : MenuEntries(menu->submenu))
        found.push_back(entry.text);
    return Compare("the menu", Joined(found), step.WordsFrom(1));
}

StepResult PickInContextMenu(ScriptStep& step) {
    HWND popup = nullptr;
    const HMENU menu = OpenContextMenu(step, popup);
    if (step.stage.menuSteps == 0) {
        if (!menu) return StepResult::Done();
        return StepResult::Again("the context menu stays open");
    }
    if (!menu) return StepResult::Again("no context menu opens");
    if (step.stage.menuSteps < 0) {
        const std::vector<MenuItem> entries = MenuEntries(menu);
        const auto entry = std::ranges::find(entries, step.Word(1), &MenuItem::text);
        if (entry == entries.end() || !entry->enabled) {
            StageKeyboard::PressInMenu(popup, VK_ESCAPE);
            return StepResult::Failed("the context menu has no entry \"" + step.Word(1) + '"');
        }
        step.stage.menuSteps = static_cast<int>(entry - entries.begin()) + 2;
    }
    // The first Down key marks the first entry; Enter picks.
    --step.stage.menuSteps;
    StageKeyboard::PressInMenu(popup, step.stage.menuSteps ? VK_DOWN : VK_RETURN);
    return StepResult::Again("the context menu is not finished");
}

StepResult ExpectContextMenu(ScriptStep& step) {
    HWND popup = nullptr;
    const HMENU menu = OpenContextMenu(step, popup);
    if (step.stage.menuSteps < 0 && !menu) return StepResult::Again("no context menu opens");
    if (!menu) return StepResult::Done();
    step.stage.menuSteps = 0;
    const StepResult result = Compare("the context menu", Joined(MenuLines(menu)), step.WordsFrom(1));
    StageKeyboard::PressInMenu(popup, VK_ESCAPE);
    if (result.state != StepResult::State::done) return StepResult::Failed(result.why);
    return StepResult::Again("the context menu stays open");
}

} // namespace vesk::verbs

// The commands that look and compare.
#include "host/files/FileFault.h"
#include "host/terminal/script/window/StageTexts.h"
#include "host/terminal/script/window/WindowFinder.h"
#include "host/terminal/script/window/WindowStage.h"
#include "host/terminal/window/Application.h"
#include "host/terminal/window/MenuBar.h"

#include <algorithm>

namespace vesk {
namespace {

StepResult CompareState(const std::string& what, bool found, bool expected) {
    if (found == expected) return StepResult::Done();
    return StepResult::Again(what + (found ? " is on" : " is off"));
}

} // namespace

StepResult WindowStage::ExpectText(const ScriptCommand& command, std::size_t) {
    const framework::Window control(Control(command));
    if (!control) return NoControl(command);
    if (IsCaption(control.Text(), command.words[1])) return StepResult::Done();
    return Compare("text of " + command.words[0], control.Text(), command.words[1]);
}

StepResult WindowStage::ExpectWindow(const ScriptCommand& command, std::size_t) {
    if (FindWindowByCaption(command.words[0], m_application.Frame().Handle())) return StepResult::Done();
    return StepResult::Again("there is no window \"" + command.words[0] + '"');
}

StepResult WindowStage::ExpectNoWindow(const ScriptCommand& command, std::size_t) {
    if (!FindWindowByCaption(command.words[0], m_application.Frame().Handle())) return StepResult::Done();
    return StepResult::Again("there is a window \"" + command.words[0] + '"');
}

StepResult WindowStage::ExpectMenu(const ScriptCommand& command, std::size_t) {
    const std::vector<MenuEntry> bar = MenuEntries(GetMenu(m_application.Frame().Handle()));
    const auto menu = std::ranges::find(bar, command.words[0], &MenuEntry::text);
    if (menu == bar.end()) return StepResult::Again("there is no menu \"" + command.words[0] + '"');
    std::vector<std::string> found;
    for (const MenuEntry& entry : MenuEntries(menu->submenu))
        found.push_back(entry.text);
    return Compare("the menu", Joined(found), Joined(command, 1));
}

StepResult WindowStage::ExpectLog(const ScriptCommand& command, std::size_t) {
    if (m_application.State().log.Contains(command.words[0])) return StepResult::Done();
    return StepResult::Again("no log line contains \"" + command.words[0] + '"');
}

StepResult WindowStage::ExpectNoLog(const ScriptCommand& command, std::size_t) {
    if (!m_application.State().log.Contains(command.words[0])) return StepResult::Done();
    return StepResult::Failed("a log line contains \"" + command.words[0] + '"');
}

StepResult WindowStage::ExpectCombo(const ScriptCommand& command, std::size_t) {
    const framework::ComboBox combo(Control(command));
    if (!combo) return NoControl(command);
    return Compare("combo " + command.words[0], Joined(combo.Items()), Joined(command, 1));
}

StepResult WindowStage::ExpectEnabled(const ScriptCommand& command, std::size_t) {
    const HWND control = Control(command);
    if (!control) return NoControl(command);
    return CompareState("enabled " + command.words[0], IsWindowEnabled(control) != 0, command.On(1));
}

StepResult WindowStage::ExpectVisible(const ScriptCommand& command, std::size_t) {
    const HWND control = Control(command);
    if (!control) return NoControl(command);
    return CompareState("visible " + command.words[0], IsWindowVisible(control) != 0, command.On(1));
}

StepResult WindowStage::ExpectFocus(const ScriptCommand& command, std::size_t) {
    const HWND control = Control(command), focus = GetFocus();
    if (!control) return NoControl(command);
    // The focus of an editable combo lies in the edit inside it.
    if (focus == control || (focus && GetParent(focus) == control)) return StepResult::Done();
    return StepResult::Again("the focus is on " + std::to_string(focus ? GetDlgCtrlID(focus) : 0));
}

StepResult WindowStage::ExpectJournal(const ScriptCommand& command, std::size_t) {
    const Loaded<std::string> journal = ReadWholeFile(m_application.Options().journal);
    if (!journal) return StepResult::Again(journal.Fault().Text());
    if (journal.Value().find(command.words[0]) != std::string::npos) return StepResult::Done();
    return StepResult::Again("the journal does not contain \"" + command.words[0] + '"');
}

StepResult WindowStage::ExpectExecuted(const ScriptCommand&, std::size_t) {
    return m_application.Server().IsIdle() ? StepResult::Done() : StepResult::Again("the server is at work");
}

} // namespace vesk

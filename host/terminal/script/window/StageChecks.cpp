// The verbs that look at a control, the log or the journal.
#include "host/terminal/script/window/Stage.h"

#include "host/files/Files.h"
#include "host/terminal/script/window/Screen.h"
#include "host/terminal/window/Application.h"

namespace vesk::verbs {
namespace {

StepResult CompareState(const std::string& what, bool found, bool expected) {
    if (found == expected) return StepResult::Done();
    return StepResult::Again(what + (found ? " is on" : " is off"));
}

} // namespace

StepResult ExpectText(ScriptStep& step) {
    const framework::Window control(step.control);
    if (IsCaption(control.Text(), step.Word(1))) return StepResult::Done();
    return Compare("text of " + step.Word(0), control.Text(), step.Word(1));
}

StepResult ExpectCombo(ScriptStep& step) {
    const framework::ComboBox combo(step.control);
    return Compare("combo " + step.Word(0), Joined(combo.Items()), step.WordsFrom(1));
}

StepResult ExpectEnabled(ScriptStep& step) {
    return CompareState("enabled " + step.Word(0), IsWindowEnabled(step.control) != 0, step.command.On(1));
}

StepResult ExpectVisible(ScriptStep& step) {
    return CompareState("visible " + step.Word(0), IsWindowVisible(step.control) != 0, step.command.On(1));
}

StepResult ExpectFocus(ScriptStep& step) {
    const HWND focus = GetFocus();
    // The focus of an editable combo lies in the edit inside it.
    if (focus == step.control || (focus && GetParent(focus) == step.control)) return StepResult::Done();
    return StepResult::Again("the focus is on " + std::to_string(focus ? GetDlgCtrlID(focus) : 0));
}

StepResult ExpectLog(ScriptStep& step) {
    if (step.stage.application.State().log.Contains(step.Word(0))) return StepResult::Done();
    return StepResult::Again("no log line contains \"" + step.Word(0) + '"');
}

StepResult ExpectNoLog(ScriptStep& step) {
    if (!step.stage.application.State().log.Contains(step.Word(0))) return StepResult::Done();
    return StepResult::Failed("a log line contains \"" + step.Word(0) + '"');
}

StepResult ExpectJournal(ScriptStep& step) {
    const Loaded<std::string> journal = ReadWholeFile(step.stage.application.Options().journal);
    if (!journal) return StepResult::Again(journal.Fault().Text());
    if (journal.Value().find(step.Word(0)) != std::string::npos) return StepResult::Done();
    return StepResult::Again("the journal does not contain \"" + step.Word(0) + '"');
}

StepResult ExpectExecuted(ScriptStep& step) {
    return step.stage.application.Server().IsIdle() ? StepResult::Done()
                                                    : StepResult::Again("the server is at work");
}

} // namespace vesk::verbs

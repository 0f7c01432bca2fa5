// Plays script commands on the program's real windows. What may open a message box is posted, never sent, so
// that the script itself is not held up by it.
#pragma once

#include "framework/Window.h"
#include "host/server/ServerCommands.h"
#include "host/terminal/docking/window/DockSite.h"
#include "host/terminal/script/KeyText.h"
#include "host/terminal/script/ScriptRunner.h"
#include "host/terminal/window/SessionLog.h"

#include <deque>
#include <optional>

namespace vesk {

class Application;

class WindowStage : public ScriptStage {
public:
    WindowStage(Application& application, SessionLog& log) : m_application(application), m_log(log) {}

    StepResult Try(const ScriptCommand& command, std::size_t attempt) override;
    std::optional<OpenMessageBox> OpenBox() override;
    bool AnswerBox(int button) override;
    void Report(const std::string& line) override { m_log.Write(line); }

private:
    using Method = StepResult (WindowStage::*)(const ScriptCommand&, std::size_t attempt);
    struct Row {
        Verb verb;
        Method method;
    };
    static const Row kRows[];

    // Actions
    StepResult Menu(const ScriptCommand&, std::size_t);
    StepResult UseWindow(const ScriptCommand&, std::size_t);
    StepResult UseMain(const ScriptCommand&, std::size_t);
    StepResult Select(const ScriptCommand&, std::size_t);
    StepResult SetEdit(const ScriptCommand&, std::size_t);
    StepResult SetDate(const ScriptCommand&, std::size_t);
    StepResult Type(const ScriptCommand&, std::size_t attempt);
    StepResult Key(const ScriptCommand&, std::size_t attempt);
    StepResult Focus(const ScriptCommand&, std::size_t);
    StepResult Press(const ScriptCommand&, std::size_t);
    StepResult SendCommand(const ScriptCommand&, std::size_t);
    StepResult SelectRow(const ScriptCommand&, std::size_t);
    StepResult SelectRows(const ScriptCommand&, std::size_t);
    StepResult ClickHeader(const ScriptCommand&, std::size_t);
    StepResult SelectTab(const ScriptCommand&, std::size_t);
    StepResult Context(const ScriptCommand&, std::size_t attempt);
    StepResult GiveFile(const ScriptCommand&, std::size_t attempt);
    StepResult Screenshot(const ScriptCommand&, std::size_t);
    StepResult Close(const ScriptCommand&, std::size_t);
    // The terminal's own commands
    StepResult Client(const ScriptCommand&, std::size_t);
    StepResult Font(const ScriptCommand&, std::size_t);
    StepResult Right(const ScriptCommand&, std::size_t);
    StepResult Mode(const ScriptCommand&, std::size_t);
    StepResult TellServer(const ScriptCommand&, std::size_t attempt);
    StepResult Dpi(const ScriptCommand&, std::size_t);
    StepResult Locale(const ScriptCommand&, std::size_t);
    StepResult Measure(const ScriptCommand&, std::size_t);
    StepResult Dock(const ScriptCommand&, std::size_t);
    StepResult HidePane(const ScriptCommand&, std::size_t);
    StepResult ShowPane(const ScriptCommand&, std::size_t);
    // Checks
    StepResult ExpectDocked(const ScriptCommand&, std::size_t);
    StepResult ExpectText(const ScriptCommand&, std::size_t);
    StepResult ExpectWindow(const ScriptCommand&, std::size_t);
    StepResult ExpectNoWindow(const ScriptCommand&, std::size_t);
    StepResult ExpectMenu(const ScriptCommand&, std::size_t);
    StepResult ExpectLog(const ScriptCommand&, std::size_t);
    StepResult ExpectNoLog(const ScriptCommand&, std::size_t);
    StepResult ExpectCombo(const ScriptCommand&, std::size_t);
    StepResult ExpectEnabled(const ScriptCommand&, std::size_t);
    StepResult ExpectVisible(const ScriptCommand&, std::size_t);
    StepResult ExpectFocus(const ScriptCommand&, std::size_t);
    StepResult ExpectRows(const ScriptCommand&, std::size_t);
    StepResult ExpectCell(const ScriptCommand&, std::size_t);
    StepResult ExpectHeadings(const ScriptCommand&, std::size_t);
    StepResult ExpectFocusRow(const ScriptCommand&, std::size_t);
    StepResult ExpectSelectedRows(const ScriptCommand&, std::size_t);
    StepResult ExpectContext(const ScriptCommand&, std::size_t attempt);
    StepResult ExpectTabs(const ScriptCommand&, std::size_t);
    StepResult ExpectSelected(const ScriptCommand&, std::size_t);
    StepResult ExpectStatus(const ScriptCommand&, std::size_t);
    StepResult ExpectJournal(const ScriptCommand&, std::size_t);

    StepResult ExpectExecuted(const ScriptCommand&, std::size_t);

    HWND Current() const;
    // Runs the command on the pane that the first word names.
    StepResult RunOnPane(const ScriptCommand& command, DockCommand run, std::size_t tab = 0);
    // The control that the command's first word names; null without one.
    HWND Control(const ScriptCommand& command) const;
    HMENU OpenContextMenu(HWND list, std::size_t attempt, HWND& popup);
    static StepResult NoControl(const ScriptCommand& command);
    void PressKey(const KeyStroke& stroke);
    void ReleaseKeys();

    Application& m_application;
    SessionLog& m_log;
    HWND m_window = nullptr;     // null: the main frame
    int m_menuSteps = -1;        // Down keys still to press in the open menu; -1 before it is open
    BYTE m_keysBefore[256] = {}; // the keyboard's state while modifiers are held
    bool m_keysHeld = false;
    UINT m_dpi = 0;              // of the last "dpi"; 0 before the first
    HWND m_fileDialog = nullptr; // has been given its path
    std::optional<Told> m_told;  // of what the server was told last
};

} // namespace vesk

#include "host/terminal/script/window/WindowStage.h"

#include "host/terminal/script/window/Screenshot.h"
#include "host/terminal/script/window/WindowFinder.h"
#include "host/terminal/window/Application.h"
#include "host/terminal/window/MenuBar.h"

#include <algorithm>

namespace vesk {

const WindowStage::Row WindowStage::kRows[] = {
    {Verb::menu, &WindowStage::Menu},
    {Verb::window, &WindowStage::UseWindow},
    {Verb::mainWindow, &WindowStage::UseMain},
    {Verb::select, &WindowStage::Select},
    {Verb::edit, &WindowStage::SetEdit},
    {Verb::date, &WindowStage::SetDate},
    {Verb::type, &WindowStage::Type},
    {Verb::key, &WindowStage::Key},
    {Verb::focus, &WindowStage::Focus},
    {Verb::press, &WindowStage::Press},
    {Verb::command, &WindowStage::SendCommand},
    {Verb::row, &WindowStage::SelectRow},
    {Verb::selectRows, &WindowStage::SelectRows},
    {Verb::header, &WindowStage::ClickHeader},
    {Verb::tab, &WindowStage::SelectTab},
    {Verb::context, &WindowStage::Context},
    {Verb::file, &WindowStage::GiveFile},
    {Verb::screenshot, &WindowStage::Screenshot},
    {Verb::client, &WindowStage::Client},
    {Verb::font, &WindowStage::Font},
    {Verb::right, &WindowStage::Right},
    {Verb::mode, &WindowStage::Mode},
    {Verb::clock, &WindowStage::TellServer},
    {Verb::fill, &WindowStage::TellServer},
    {Verb::other, &WindowStage::TellServer},
    {Verb::execute, &WindowStage::TellServer},
    {Verb::fault, &WindowStage::TellServer},
    {Verb::dpi, &WindowStage::Dpi},
    {Verb::locale, &WindowStage::Locale},
    {Verb::measure, &WindowStage::Measure},
    {Verb::dock, &WindowStage::Dock},
    {Verb::hidePane, &WindowStage::HidePane},
    {Verb::showPane, &WindowStage::ShowPane},
    {Verb::expectDocked, &WindowStage::ExpectDocked},
    {Verb::close, &WindowStage::Close},
    {Verb::expectText, &WindowStage::ExpectText},
    {Verb::expectWindow, &WindowStage::ExpectWindow},
    {Verb::expectNoWindow, &WindowStage::ExpectNoWindow},
    {Verb::expectMenu, &WindowStage::ExpectMenu},
    {Verb::expectLog, &WindowStage::ExpectLog},
    {Verb::expectNoLog, &WindowStage::ExpectNoLog},
    {Verb::expectCombo, &WindowStage::ExpectCombo},
    {Verb::expectEnabled, &WindowStage::ExpectEnabled},
    {Verb::expectVisible, &WindowStage::ExpectVisible},
    {Verb::expectFocus, &WindowStage::ExpectFocus},
    {Verb::expectRows, &WindowStage::ExpectRows},
    {Verb::expectCell, &WindowStage::ExpectCell},
    {Verb::expectHeadings, &WindowStage::ExpectHeadings},
    {Verb::expectFocusRow, &WindowStage::ExpectFocusRow},
    {Verb::expectSelectedRows, &WindowStage::ExpectSelectedRows},
    {Verb::expectContext, &WindowStage::ExpectContext},
    {Verb::expectTabs, &WindowStage::ExpectTabs},
    {Verb::expectSelected, &WindowStage::ExpectSelected},
    {Verb::expectStatus, &WindowStage::ExpectStatus},
    {Verb::expectJournal, &WindowStage::ExpectJournal},
    {Verb::expectExecuted, &WindowStage::ExpectExecuted},
};

StepResult WindowStage::Try(const ScriptCommand& command, std::size_t attempt) {
    const Row* row = std::ranges::find(kRows, command.verb, &Row::verb);
    if (row == std::end(kRows)) return StepResult::Failed("the windows know no such command");
    return (this->*row->method)(command, attempt);
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

HWND WindowStage::Current() const {
    return m_window ? m_window : m_application.Frame().Handle();
}

HWND WindowStage::Control(const ScriptCommand& command) const {
    return IsWindow(Current()) ? FindControl(Current(), command.Number(0)) : nullptr;
}

StepResult WindowStage::NoControl(const ScriptCommand& command) {
    return StepResult::Again("there is no control " + command.words[0]);
}

StepResult WindowStage::Menu(const ScriptCommand& command, std::size_t) {
    const HWND frame = m_application.Frame().Handle();
    HMENU menu = GetMenu(frame);
    for (std::size_t i = 0; i < command.words.size(); ++i) {
        const std::vector<MenuEntry> entries = MenuEntries(menu);
        const auto entry = std::ranges::find(entries, command.words[i], &MenuEntry::text);
        if (entry == entries.end() || !entry->enabled)
            return StepResult::Again("there is no menu entry \"" + command.words[i] + '"');
        menu = entry->submenu;
        if (i + 1 == command.words.size()) PostMessageA(frame, WM_COMMAND, entry->id, 0);
    }
    return StepResult::Done();
}

StepResult WindowStage::UseWindow(const ScriptCommand& command, std::size_t) {
    const HWND window = FindWindowByCaption(command.words[0], m_application.Frame().Handle());
    if (!window) return StepResult::Again("there is no window \"" + command.words[0] + '"');
    m_window = window;
    SetForegroundWindow(GetAncestor(window, GA_ROOT));
    return StepResult::Done();
}

StepResult WindowStage::UseMain(const ScriptCommand&, std::size_t) {
    m_window = nullptr;
    SetForegroundWindow(Current());
    return StepResult::Done();
}

StepResult WindowStage::Select(const ScriptCommand& command, std::size_t) {
    const framework::ComboBox combo(Control(command));
    if (!combo) return NoControl(command);
    const int index = combo.Find(command.words[1]);
    if (index < 0) return StepResult::Again("the combo has no entry \"" + command.words[1] + '"');
    combo.Select(index);
    for (const int notification : {CBN_SELENDOK, CBN_SELCHANGE})
        PostMessageA(GetParent(combo.Handle()), WM_COMMAND, MAKEWPARAM(command.Number(0), notification),
                     reinterpret_cast<LPARAM>(combo.Handle()));
    return StepResult::Done();
}

StepResult WindowStage::SetEdit(const ScriptCommand& command, std::size_t) {
    const framework::Window edit(Control(command));
    if (!edit) return NoControl(command);
    edit.SetText(command.words[1]);
    return StepResult::Done();
}

StepResult WindowStage::SetDate(const ScriptCommand& command, std::size_t) {
    const framework::DatePicker picker(Control(command));
    if (!picker) return NoControl(command);
    constexpr ULONGLONG ticksPerDay = 864'000'000'000;
    SYSTEMTIME date{};
    GetLocalTime(&date);
    FILETIME time{};
    SystemTimeToFileTime(&date, &time);
    ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart += static_cast<ULONGLONG>(command.Number(1)) * ticksPerDay;
    time = {ticks.LowPart, ticks.HighPart};
    FileTimeToSystemTime(&time, &date);
    picker.SetTime(date);
    return StepResult::Done();
}

StepResult WindowStage::Focus(const ScriptCommand& command, std::size_t) {
    const framework::Window control(Control(command));
    if (!control) return NoControl(command);
    control.Focus();
    return StepResult::Done();
}

StepResult WindowStage::Press(const ScriptCommand& command, std::size_t) {
    const framework::Window button(Control(command));
    if (!button) return NoControl(command);
    if (!IsWindowEnabled(button.Handle())) return StepResult::Again("the button is disabled");
    PostMessageA(GetParent(button.Handle()), WM_COMMAND, MAKEWPARAM(command.Number(0), BN_CLICKED),
                 reinterpret_cast<LPARAM>(button.Handle()));
    return StepResult::Done();
}

StepResult WindowStage::SendCommand(const ScriptCommand& command, std::size_t) {
    PostMessageA(Current(), WM_COMMAND, static_cast<WPARAM>(command.Number(0)), 0);
    return StepResult::Done();
}

StepResult WindowStage::Screenshot(const ScriptCommand& command, std::size_t) {
    for (const HWND window : {Current(), m_application.Frame().Handle()})
        RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const std::string fault = SaveScreenshot(m_application.Options().outFolder + '/' + command.words[0]);
    return fault.empty() ? StepResult::Done() : StepResult::Failed(fault);
}

StepResult WindowStage::Close(const ScriptCommand&, std::size_t) {
    PostMessageA(Current(), WM_CLOSE, 0, 0);
    m_window = nullptr;
    return StepResult::Done();
}

StepResult WindowStage::Client(const ScriptCommand& command, std::size_t) {
    m_application.ActivateClient(command.words[0]);
    return StepResult::Done();
}

StepResult WindowStage::Font(const ScriptCommand& command, std::size_t) {
    m_application.SetFont(command.Number(0), command.Number(1));
    return StepResult::Done();
}

StepResult WindowStage::Right(const ScriptCommand& command, std::size_t) {
    m_application.SetRight(command.words[0], command.On(1));
    return StepResult::Done();
}

StepResult WindowStage::Mode(const ScriptCommand& command, std::size_t) {
    m_application.SetLoginMode(command.Number(0));
    return StepResult::Done();
}

StepResult WindowStage::TellServer(const ScriptCommand& command, std::size_t attempt) {
    if (attempt == 0) {
        std::string line(VerbRules()[static_cast<std::size_t>(command.verb)].name);
        for (const std::string& word : command.words)
            line += ' ' + word;
        m_told.reset();
        m_application.TellServer(line, [this](const Told& told) { m_told = told; });
    }
    if (!m_told) return StepResult::Again("the server has not yet answered");
    return m_told->isDone ? StepResult::Done() : StepResult::Failed(m_told->text);
}

} // namespace vesk

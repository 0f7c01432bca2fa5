#include "plugin/morning/window/PeriodWindow.h"

#include "framework/KeyboardHook.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr int kPickers[] = {IDC_RUNS_FROM, IDC_RUNS_TO};

constexpr LPARAM kKeyWasDown = 1 << 30;

} // namespace

CPeriodWindow::CPeriodWindow(HINSTANCE module, int resource, Session& session, Args args)
    : CListDialog(module, resource, session,
                  {IDI_CALENDAR, IDC_RUNS_LIST, IDC_RUNS_NOTICE, IDC_RUNS_STATUS, IDC_RUNS_REFRESH, args.name,
                   std::move(args.columns), args.firstCommand}),
      m_choices(args.choices), m_firstChoice(args.firstChoice) {}

void CPeriodWindow::BringUp() {
    const bool isNew = !HasWindow();
    if (!planfold::BringUp(*this, m_session)) return;
    Item(IDC_RUNS_LIST).Focus();
    if (isNew) Choose(m_firstChoice);
}

void CPeriodWindow::OnInit() {
    for (const PeriodChoice& choice : m_choices)
        Item<framework::ComboBox>(IDC_RUNS_PERIOD).Add(choice.text);
    for (std::size_t i = 0; i < m_calendars.size(); ++i) {
        const auto picker = Item<framework::DatePicker>(kPickers[i]);
        picker.SetFormat(kDateFormat);
        m_calendars[i].Attach(picker.Handle());
    }
    CListDialog::OnInit();
    m_enter.Attach(Item(IDC_RUNS_LIST).Handle());
}

void CPeriodWindow::ShowAsOf() {
    const LocalDateTime now = LocalNow();
    Item(IDC_RUNS_AS_OF).SetText(Format("As of %02d:%02d:%02d", now.hour, now.minute, now.second));
}

Day CPeriodWindow::DateOf(int picker) const {
    return DayOf(FromSystemTime(Item<framework::DatePicker>(picker).Time())).value_or(Day());
}

void CPeriodWindow::SetDate(int picker, Day day) const {
    Item<framework::DatePicker>(picker).SetTime(ToSystemTime(planfold::DateOf(day)));
}

RunPeriod CPeriodWindow::Chosen() const {
    return {DateOf(IDC_RUNS_FROM), DateOf(IDC_RUNS_TO)};
}

void CPeriodWindow::Choose(int choice) {
    if (choice < 0 || choice >= static_cast<int>(m_choices.size())) return;
    Item<framework::ComboBox>(IDC_RUNS_PERIOD).Select(choice);
    const PeriodChoice& chosen = m_choices[static_cast<std::size_t>(choice)];
    if (chosen.days > 0) {
        const Day from = *DayOf(LocalNow()) + std::chrono::days(chosen.firstDay);
        SetDate(IDC_RUNS_FROM, from);
        SetDate(IDC_RUNS_TO, from + std::chrono::days(chosen.days - 1));
    }
    ShowPeriod(Chosen());
}

// Another day may have begun.
void CPeriodWindow::Refresh() {
    Choose(Item<framework::ComboBox>(IDC_RUNS_PERIOD).Selected());
}

std::optional<LRESULT> CPeriodWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != framework::kOfferedKey) return CListDialog::OnMessage(message, wParam, lParam);
    if (wParam != VK_F5) return false;
    if (!(lParam & kKeyWasDown)) Refresh();
    return true;
}

bool CPeriodWindow::OnCommand(const framework::Command& command) {
    if (command.id == IDC_RUNS_PERIOD) {
        if (command.notification == CBN_SELCHANGE)
            Choose(Item<framework::ComboBox>(IDC_RUNS_PERIOD).Selected());
        return true;
    }
    if (command.id == IDC_RUNS_MINE) {
        Choose(Item<framework::ComboBox>(IDC_RUNS_PERIOD).Selected());
        return true;
    }
    if (command.id == IDC_RUNS_REFRESH) {
        Refresh();
        return true;
    }
    return OnEntry(command.id) || CListDialog::OnCommand(command);
}

std::optional<LRESULT> CPeriodWindow::OnNotify(const NMHDR& notification) {
    const auto picker = std::ranges::find(kPickers, static_cast<int>(notification.idFrom));
    if (picker != std::end(kPickers)) {
        if (notification.code == DTN_DROPDOWN)
            m_calendars[static_cast<std::size_t>(picker - kPickers)].OnDropDown();
        // The system may tell the same day twice, which is shown anew at little cost.
        if (notification.code == DTN_DATETIMECHANGE) Choose(static_cast<int>(m_choices.size()) - 1);
        return 0;
    }
    if (notification.idFrom == IDC_RUNS_LIST) {
        const std::uint32_t row = FocusedRow();
        if (notification.code == LVN_ITEMACTIVATE) {
            if (row != UINT32_MAX) Activate(row);
            return 0;
        }
        if (notification.code == LVN_KEYDOWN && row != UINT32_MAX
            && OnRowKey(reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey, row))
            return 1;
    }
    return CListDialog::OnNotify(notification);
}

} // namespace planfold

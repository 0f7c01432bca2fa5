#include "plugin/morning/window/PeriodWindow.h"

#include "framework/Guard.h"
#include "framework/KeyboardHook.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr int kPickers[] = {IDC_RUNS_FROM, IDC_RUNS_TO};
// The button's width in the template's units, of which four are a letter.
constexpr int kButtonUnits = 54;

constexpr LPARAM kKeyWasDown = 1 << 30;

} // namespace

std::optional<LRESULT> CPeriodWindow::ListNotice::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != framework::kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
    SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
    SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
}

CPeriodWindow::CPeriodWindow(HINSTANCE module, int resource, Session& session, Args args)
    : Dialog(module, resource), m_session(session), m_args(std::move(args)) {}

void CPeriodWindow::BringUp() {
    const bool isNew = !HasWindow();
    planfold::BringUp(*this, m_session);
    if (!HasWindow()) return;
    Item(IDC_RUNS_LIST).Focus();
    if (isNew) Choose(m_args.firstChoice);
}

void CPeriodWindow::OnInit() {
    for (const PeriodChoice& choice : m_args.choices)
        Item<framework::ComboBox>(IDC_RUNS_PERIOD).Add(choice.text);
    for (std::size_t i = 0; i < m_calendars.size(); ++i) {
        const auto picker = Item<framework::DatePicker>(kPickers[i]);
        picker.SetFormat(kDateFormat);
        m_calendars[i].Attach(picker.Handle());
    }
    m_notice.Attach(Item(IDC_RUNS_NOTICE).Handle());
    const HWND list = Item(IDC_RUNS_LIST).Handle();
    m_list.Attach({list, m_args.name, this, m_args.columns.data(),
                   static_cast<std::int32_t>(m_args.columns.size()), m_args.firstCommand});
    m_enter.Attach(list);
    m_statusBar.Create(Handle(), IDC_RUNS_STATUS, m_args.name);
    LayOut(Self().Dpi());
    ShowAllColumns(Handle(), list);
}

void CPeriodWindow::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        Dialog::LayOut(dpi);
        SetCaptionIcon(IDI_CALENDAR);
    });
    Item(IDC_RUNS_STATUS).SetFont(reinterpret_cast<HFONT>(Item(IDC_RUNS_REFRESH).Send(WM_GETFONT)));
    Arrange();
}

// The list takes what the line above and the status bar below leave.
void CPeriodWindow::Arrange() {
    if (!m_frame.HasRoom()) return;
    m_statusBar.Place();
    const LONG status = framework::Window(m_statusBar.Handle()).ClientRect().bottom;
    ShowStatus();
    PlaceList(m_frame.Room(status));
}

void CPeriodWindow::PlaceList(const RECT& area) {
    Item(IDC_RUNS_LIST).Move(area);
}

void CPeriodWindow::ShowStatus() {
    ShowParts(m_statusBar, m_status, Item(IDC_RUNS_REFRESH).ClientRect().right * 4 / kButtonUnits);
}

void CPeriodWindow::ShowTexts(const std::string& notice, std::array<std::string, 3> status) {
    Item(IDC_RUNS_NOTICE).SetText(notice);
    Item(IDC_RUNS_NOTICE).Show(!notice.empty());
    m_status = std::move(status);
    ShowStatus();
}

void CPeriodWindow::ShowAsOf() {
    const LocalDateTime now = LocalNow();
    Item(IDC_RUNS_AS_OF).SetText(Format("As of %02d:%02d:%02d", now.hour, now.minute, now.second));
}

void CPeriodWindow::ListRows(std::span<const std::uint32_t> rows) {
    const auto list = Item(IDC_RUNS_LIST);
    const auto top = list.Send(LVM_GETTOPINDEX);
    const framework::RedrawHold hold(list.Handle());
    m_list.BeginChanges();
    m_list.RemoveAll();
    for (std::size_t i = rows.size(); i-- > 0;)
        m_list.InsertFront(rows[i], kKorvexAsked);
    m_list.EndChanges();
    RECT row{LVIR_BOUNDS, 0, 0, 0};
    if (top <= 0 || !list.Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row))) return;
    list.Send(LVM_SCROLL, 0, (top - list.Send(LVM_GETTOPINDEX)) * (row.bottom - row.top));
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
    if (choice < 0 || choice >= static_cast<int>(m_args.choices.size())) return;
    Item<framework::ComboBox>(IDC_RUNS_PERIOD).Select(choice);
    const PeriodChoice& chosen = m_args.choices[static_cast<std::size_t>(choice)];
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
    switch (message) {
    case framework::kOfferedKey:
        if (wParam != VK_F5) return false;
        if (!(lParam & kKeyWasDown)) Refresh();
        return true;
    case WM_SIZE:
        Arrange();
        return std::nullopt;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_SYSCOLORCHANGE:
        return Item(IDC_RUNS_LIST).Send(message);
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle() || IsOnHeadings(m_list.Handle(), lParam))
            return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, Entries());
        return 0;
    case WM_DESTROY:
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool CPeriodWindow::OnCommand(const framework::Command& command) {
    if (command.id == IDC_RUNS_PERIOD) {
        if (command.notification == CBN_SELCHANGE)
            Choose(Item<framework::ComboBox>(IDC_RUNS_PERIOD).Selected());
        return true;
    }
    if (command.id == IDC_RUNS_REFRESH) {
        Refresh();
        return true;
    }
    return OnEntry(command.id) || m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
}

std::optional<LRESULT> CPeriodWindow::OnNotify(const NMHDR& notification) {
    const auto picker = std::ranges::find(kPickers, static_cast<int>(notification.idFrom));
    if (picker != std::end(kPickers)) {
        if (notification.code == DTN_DROPDOWN)
            m_calendars[static_cast<std::size_t>(picker - kPickers)].OnDropDown();
        // The system may tell the same day twice, which is shown anew at little cost.
        if (notification.code == DTN_DATETIMECHANGE) Choose(static_cast<int>(m_args.choices.size()) - 1);
        return 0;
    }
    if (notification.idFrom == IDC_RUNS_LIST) {
        const std::uint32_t row = m_list.Focused();
        if (notification.code == LVN_ITEMACTIVATE) {
            if (row != UINT32_MAX) Activate(row);
            return 0;
        }
        if (notification.code == LVN_KEYDOWN && row != UINT32_MAX
            && OnRowKey(reinterpret_cast<const NMLVKEYDOWN&>(notification).wVKey, row))
            return 1;
    }
    LRESULT result = 0;
    return m_list.HandleNotify(&notification, &result) ? std::optional(result) : std::nullopt;
}

void CPeriodWindow::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                              KorvexText* texts) noexcept {
    framework::Guard([&] {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string_view text = Cell(records[i], column);
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

} // namespace planfold

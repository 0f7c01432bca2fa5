#include "plugin/dayreport/window/DayReportDlg.h"

#include "framework/Guard.h"
#include "framework/KeyboardHook.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr char kName[] = "SIPDayReport";
constexpr unsigned kListCommands = 26400; // of a hundred
// A button's width in the template's units, of which four are a letter.
constexpr int kButtonUnits = 54;

} // namespace

std::optional<LRESULT> CDayReportDlg::ListNotice::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != framework::kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
    SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
    SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
}

CDayReportDlg::CDayReportDlg(HINSTANCE module, Session& session, RecordFiles& files)
    : Dialog(module, IDD_DAY_REPORT), m_session(session), m_report(files, *this),
      m_progress(module, session, m_report, CRunProgressDlg::Owner::disabled) {}

void CDayReportDlg::BringUp() {
    const bool isNew = !HasWindow();
    planfold::BringUp(*this, m_session);
    if (!HasWindow()) return;
    Item(IDC_DAY_LIST).Focus();
    ShowDay(isNew ? LocalNow() : m_report.Day());
}

void CDayReportDlg::OnInit() {
    const auto picker = Item<framework::DatePicker>(IDC_DAY_DATE);
    picker.SetFormat(kDateFormat);
    m_calendar.Attach(picker.Handle());
    m_notice.Attach(Item(IDC_DAY_NOTICE).Handle());
    const auto columns = ListColumns<DayColumn>(kDayColumns);
    m_list.Attach({Item(IDC_DAY_LIST).Handle(), kName, this, columns.data(),
                   static_cast<std::int32_t>(columns.size()), kListCommands});
    m_statusBar.Create(Handle(), IDC_DAY_STATUS, kName);
    LayOut(Self().Dpi());
    ShowAllColumns(Handle(), Item(IDC_DAY_LIST).Handle());
}

void CDayReportDlg::OnDestroyed() {
    m_progress.Destroy();
    m_report.Forget();
    m_frame.Forget();
}

void CDayReportDlg::LayOut(UINT dpi) {
    m_frame.Renew([&] {
        Dialog::LayOut(dpi);
        SetCaptionIcon(IDI_CALENDAR);
    });
    Item(IDC_DAY_STATUS).SetFont(reinterpret_cast<HFONT>(Item(IDC_DAY_TODAY).Send(WM_GETFONT)));
    Arrange();
}

// The list takes what the line above and the status bar below leave.
void CDayReportDlg::Arrange() {
    if (!m_frame.HasRoom()) return;
    m_statusBar.Place();
    const LONG status = framework::Window(m_statusBar.Handle()).ClientRect().bottom;
    ShowStatus();
    Item(IDC_DAY_LIST).Move(m_frame.Room(status));
}

void CDayReportDlg::ShowStatus() {
    ShowParts(m_statusBar, m_status, Item(IDC_DAY_TODAY).ClientRect().right * 4 / kButtonUnits);
}

std::optional<LRESULT> CDayReportDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case framework::kOfferedKey:
        return OnKey(wParam, lParam);
    case WM_SIZE:
        Arrange();
        return std::nullopt;
    case WM_GETMINMAXINFO:
        m_frame.SetLeastSize(lParam);
        return 0;
    case WM_SYSCOLORCHANGE:
        return Item(IDC_DAY_LIST).Send(message);
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wParam) != m_list.Handle() || IsOnHeadings(m_list.Handle(), lParam))
            return std::nullopt;
        m_menu.Open(Handle(), RowMenuPlace(m_list.Handle(), lParam), m_list, {});
        return 0;
    case WM_DESTROY:
        m_menu.Close();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

// Wherever the focus is.
bool CDayReportDlg::OnKey(WPARAM key, LPARAM keyData) {
    if (key == VK_F5) {
        if (!framework::IsRepeated(keyData)) ShowDay(m_report.Day());
        return true;
    }
    if ((key != VK_PRIOR && key != VK_NEXT) || GetKeyState(VK_CONTROL) >= 0) return false;
    ShowDay(m_report.Day(key == VK_PRIOR ? -1 : 1));
    return true;
}

bool CDayReportDlg::OnCommand(const framework::Command& command) {
    switch (command.id) {
    case IDC_DAY_PREVIOUS:
        ShowDay(m_report.Day(-1));
        return true;
    case IDC_DAY_NEXT:
        ShowDay(m_report.Day(1));
        return true;
    case IDC_DAY_TODAY:
        ShowDay(LocalNow());
        return true;
    case IDC_DAY_REFRESH:
        ShowDay(m_report.Day());
        return true;
    default:
        return m_list.HandleCommand(static_cast<std::uint32_t>(command.id));
    }
}

std::optional<LRESULT> CDayReportDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == DTN_DROPDOWN) m_calendar.OnDropDown();
    if (notification.code == DTN_DATETIMECHANGE) {
        // The system may tell the same day twice.
        const LocalDateTime day =
            FromSystemTime(reinterpret_cast<const NMDATETIMECHANGE&>(notification).st).Midnight();
        if (day != m_report.Day()) ShowDay(day);
        return 0;
    }
    LRESULT result = 0;
    return m_list.HandleNotify(&notification, &result) ? std::optional(result) : std::nullopt;
}

void CDayReportDlg::ShowDay(const LocalDateTime& day) {
    const LocalDateTime now = LocalNow();
    Item<framework::DatePicker>(IDC_DAY_DATE).SetTime(ToSystemTime(day));
    Item(IDC_DAY_AS_OF).SetText(Format("As of %02d:%02d:%02d", now.hour, now.minute, now.second));
    m_report.Show(day);
}

void CDayReportDlg::ShowRows(bool anew) {
    if (!HasWindow()) return;
    const std::string notice = m_report.Notice();
    Item(IDC_DAY_NOTICE).SetText(notice);
    Item(IDC_DAY_NOTICE).Show(!notice.empty());
    m_list.BeginChanges();
    if (anew) m_list.RemoveAll();
    for (std::uint32_t row = 0; row < m_report.RowCount(); ++row)
        m_list.InsertFront(row, kKorvexAsked);
    m_list.EndChanges();
    m_status = m_report.Status();
    ShowStatus();
}

void CDayReportDlg::CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                              KorvexText* texts) noexcept {
    framework::Guard([&] {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::string_view text = m_report.Text(records[i], kDayColumns[column].field);
            texts[i] = {text.data(), static_cast<std::uint32_t>(text.size())};
        }
    });
}

std::int32_t CDayReportDlg::RowLook(std::uint32_t record) noexcept {
    return m_report.Look(record);
}

} // namespace planfold

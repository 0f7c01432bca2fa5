#include "plugin/dayreport/window/DayReportDlg.h"

#include "framework/KeyboardHook.h"
#include "plugin/base/Text.h"
#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

namespace planfold {

CDayReportDlg::CDayReportDlg(HINSTANCE module, Session& session, RecordFiles& files)
    : CListDialog(module, IDD_DAY_REPORT, session,
                  {IDI_CALENDAR, IDC_DAY_LIST, IDC_DAY_NOTICE, IDC_DAY_STATUS, IDC_DAY_TODAY, "SIPDayReport",
                   ListColumns<DayColumn>(kDayColumns), FirstCommand(NumberedList::dayReport)}),
      m_report(files, *this), m_progress(module, session, m_report, CRunProgressDlg::Owner::disabled) {}

void CDayReportDlg::BringUp() {
    const bool isNew = !HasWindow();
    if (!planfold::BringUp(*this, m_session)) return;
    Item(IDC_DAY_LIST).Focus();
    ShowDay(isNew ? LocalNow() : m_report.Day());
}

void CDayReportDlg::OnInit() {
    const auto picker = Item<framework::DatePicker>(IDC_DAY_DATE);
    picker.SetFormat(kDateFormat);
    m_calendar.Attach(picker.Handle());
    CListDialog::OnInit();
}

void CDayReportDlg::OnDestroyed() {
    m_progress.Destroy();
    m_report.Forget();
    CListDialog::OnDestroyed();
}

std::optional<LRESULT> CDayReportDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == framework::kOfferedKey) return OnKey(wParam, lParam);
    return CListDialog::OnMessage(message, wParam, lParam);
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
        return CListDialog::OnCommand(command);
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
    return CListDialog::OnNotify(notification);
}

void CDayReportDlg::ShowDay(const LocalDateTime& day) {
    const LocalDateTime now = LocalNow();
    Item<framework::DatePicker>(IDC_DAY_DATE).SetTime(ToSystemTime(day));
    Item(IDC_DAY_AS_OF).SetText(Format("As of %02d:%02d:%02d", now.hour, now.minute, now.second));
    m_report.Show(day);
}

void CDayReportDlg::ShowRows(bool anew) {
    if (!HasWindow()) return;
    List().BeginChanges();
    if (anew) List().RemoveAll();
    for (std::uint32_t row = 0; row < m_report.RowCount(); ++row)
        List().InsertFront(row, kKorvexAsked);
    List().EndChanges();
    ShowTexts(m_report.Notice(), m_report.Status());
}

std::string_view CDayReportDlg::Cell(std::uint32_t row, std::int32_t column) const {
    return m_report.Text(row, kDayColumns[column].field);
}

} // namespace planfold

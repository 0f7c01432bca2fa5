#include "plugin/morning/window/CopyPlansDlg.h"

#include "plugin/controls/window/DialogWindow.h"
#include "plugin/resources/resource.h"

#include <utility>

namespace planfold {

CCopyPlansDlg::CCopyPlansDlg(HINSTANCE module, Session& session, const OrderCache& records, Copy copy)
    : Dialog(module, IDD_COPY_PLANS), m_session(session), m_records(records), m_copy(std::move(copy)) {}

void CCopyPlansDlg::Open(HWND owner, std::vector<std::string> numbers, bool areRuns) {
    m_numbers = std::move(numbers);
    m_areRuns = areRuns;
    if (!HasWindow() && !Create(owner)) return;
    ShowCopies();
    Self().Show(true);
    Self().BringToFront();
}

void CCopyPlansDlg::OnInit() {
    const Day tomorrow = *DayOf(LocalNow()) + std::chrono::days(1);
    const auto picker = Item<framework::DatePicker>(IDC_COPY_START);
    picker.SetTime(ToSystemTime(DateOf(m_session.ClosedDays().FirstOpen(tomorrow))));
    picker.SetFormat(kDateFormat);
    m_calendar.Attach(picker.Handle());
    Item(IDC_COPY_LEFT).Send(BM_SETCHECK, BST_CHECKED);
}

void CCopyPlansDlg::OnLaidOut() {
    SetCaptionIcon(IDI_CALENDAR);
}

CopiedPeriods CCopyPlansDlg::Periods() const {
    if (m_areRuns) return CopiedPeriods::one;
    const bool left = Item(IDC_COPY_LEFT).Send(BM_GETCHECK) == BST_CHECKED;
    return left ? CopiedPeriods::left : CopiedPeriods::registered;
}

LocalDateTime CCopyPlansDlg::Start() const {
    return FromSystemTime(Item<framework::DatePicker>(IDC_COPY_START).Time()).Midnight();
}

CopiedPlans CCopyPlansDlg::Copies() const {
    return CopyPlans(m_records, m_numbers, Periods(), DayOf(Start()).value_or(Day()), m_session);
}

bool CCopyPlansDlg::ShowCopies() {
    for (const int choice : {IDC_COPY_LEFT, IDC_COPY_REGISTERED})
        Item(choice).Enable(!m_areRuns);
    const CopiedPlans copies = Copies();
    // The basket takes these orders without a form's check.
    const auto refusal = CheckStartDate(Start(), LocalNow());
    Item(IDC_COPY_TEXT)
        .SetText(refusal ? refusal->text
                         : DescribeCopies(copies) + (m_areRuns ? " Each is for one run." : ""));
    Item(IDOK).Enable(!copies.orders.empty());
    return !refusal;
}

bool CCopyPlansDlg::OnCommand(const framework::Command& command) {
    if (command.id == IDC_COPY_LEFT || command.id == IDC_COPY_REGISTERED) ShowCopies();
    if (command.id != IDOK) return command.id != IDCANCEL;
    if (!ShowCopies()) {
        Item(IDC_COPY_START).Focus();
        return true;
    }
    CopiedPlans copies = Copies();
    Destroy();
    Lifetime::Last([&](Pass pass) { m_copy(pass, std::move(copies.orders)); });
    return true;
}

std::optional<LRESULT> CCopyPlansDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == DTN_DROPDOWN) m_calendar.OnDropDown();
    if (notification.code == DTN_DATETIMECHANGE) ShowCopies();
    return std::nullopt;
}

} // namespace planfold

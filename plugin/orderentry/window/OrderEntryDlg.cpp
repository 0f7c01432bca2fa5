#include "plugin/orderentry/window/OrderEntryDlg.h"

#include "framework/Guard.h"
#include "framework/KeyboardHook.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// To itself, when a control shows only later what it has told.
constexpr UINT kShowPlanLater = WM_APP + 1;

} // namespace

COrderEntryDlg::COrderEntryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes)
    : DialogWindowOf(module, IDD_ORDER_ENTRY, boxes), m_session(session),
      m_link(session.lookup, kRxRequests, this, this), m_entry(session, *this, m_link.Control()),
      m_controls(*this, session, m_entry.Life()), m_plannedDates(module, session) {}

void COrderEntryDlg::Open() {
    // A form that was filled for modification is never used for a new order.
    if (m_entry.FilledForModify()) Destroy();
    BringUp(*this, m_session);
}

void COrderEntryDlg::OpenForModify(const SipRegistration& registration) {
    // Making the form sets the operation mode anew, as for an order of its own.
    const std::int32_t operationMode = m_session.m_nSipOperationMode;
    BringUp(*this, m_session);
    m_session.m_nSipOperationMode = operationMode;
    if (HasWindow()) m_entry.FillForModify(registration);
    if (HasWindow()) OnPlanChanged();
    m_session.m_nSipOperationMode = operationMode;
    Self().BringToFront();
}

void COrderEntryDlg::ShutDown() {
    Destroy();
    m_link.Release();
}

void COrderEntryDlg::SetText(int control, std::string_view text) {
    // What the user did not type is not searched for.
    if (control == IDC_CLIENT_SEARCH)
        m_controls.SetClient(text);
    else
        DialogWindowOf::SetText(control, text);
}

void COrderEntryDlg::SetDigitsOnly(int edit, bool on) {
    DialogWindowOf::SetDigitsOnly(edit, on);
    m_controls.FilterValue(!on);
}

void COrderEntryDlg::ShowSummary(std::string_view text, bool alarms) {
    const auto meaning = alarms ? framework::Meaning::bad : framework::Meaning::plain;
    m_summary.Tell(std::string(text), meaning);
}

void COrderEntryDlg::ShowPlanSoon() {
    PostMessageA(Dialog::Handle(), kShowPlanLater, 0, 0);
}

void COrderEntryDlg::OnRegistrationChanged(const SipRegistration& registration) {
    m_entry.OnRegistrationChanged(registration);
    m_plannedDates.SetPlan(m_entry.Form().CurrentPlan());
}

void COrderEntryDlg::OnInit() {
    m_summary.Attach(Item(IDC_PLAN_SUMMARY).Handle());
    if (m_entry.Life().Across([&](Pass pass) { m_controls.SetUp(pass, OrderEntryForm::kName); }))
        m_entry.Initialise(LocalNow(), SipFormControls::CustomProducts());
}

void COrderEntryDlg::OnLaidOut() {
    LoadPeriodIcons();
    SetCaptionIcon(IDI_CALENDAR);
    m_controls.OnLaidOut();
}

// In the size that the layout gave: a static does not scale its icon.
void COrderEntryDlg::LoadPeriodIcons() {
    struct IconRow {
        int control;
        int icon;
    };
    static constexpr IconRow rows[] = {{IDC_PERIOD_ICON_1, IDI_CALENDAR}, {IDC_PERIOD_ICON_2, IDI_REPEAT}};
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const framework::Window control = Item(rows[i].control);
        framework::Icon icon = LoadModuleIcon(rows[i].icon, control.ClientRect().bottom);
        control.Send(STM_SETICON, reinterpret_cast<WPARAM>(icon.Get()));
        m_periodIcons[i] = std::move(icon);
    }
}

std::optional<LRESULT> COrderEntryDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOVE:
        m_controls.OnMoved();
        return std::nullopt;
    case framework::kOfferedKey:
        return wParam == VK_F3 && !framework::IsRepeated(lParam) && m_entry.BringBack();
    case kShowPlanLater:
        OnPlanChanged();
        return 0;
    default:
        return std::nullopt;
    }
}

bool COrderEntryDlg::OnCommand(const framework::Command& command) {
    m_controls.OnCommand(command);
    if (command.notification == BN_CLICKED) {
        OnButton(command.id);
        return command.id != IDCANCEL;
    }
    constexpr int edits[] = {IDC_VALUE, IDC_PERIOD, IDC_CLIENT_SEARCH};
    if (command.notification == EN_CHANGE && std::ranges::find(edits, command.id) != std::end(edits))
        OnPlanChanged();
    // A combo with an edit tells a choice before the edit has it.
    if (command.id == IDC_CLIENT_COMBO) ShowPlanSoon();
    if (command.notification == CBN_SELCHANGE) {
        if (m_entry.Form().OnChosen(command.id)) OnPlanChanged();
    }
    return false;
}

void COrderEntryDlg::OnButton(int button) {
    if (button == IDC_SUBMIT) m_entry.Submit(LocalNow());
    if (button == IDC_PLAN_DATES)
        m_plannedDates.Open(Dialog::Handle(), m_entry.Form().CurrentPlan(), FontSize());
}

std::optional<LRESULT> COrderEntryDlg::OnNotify(const NMHDR& notification) {
    m_controls.OnNotify(notification);
    if (notification.code == DTN_DATETIMECHANGE) OnPlanChanged();
    return std::nullopt;
}

void COrderEntryDlg::OnPlanChanged() {
    if (m_entry.Form().ShowPlan()) m_plannedDates.SetPlan(m_entry.Form().CurrentPlan());
}

void COrderEntryDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_entry.OnResponse(message);
    });
}

} // namespace planfold

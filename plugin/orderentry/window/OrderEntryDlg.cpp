#include "plugin/orderentry/window/OrderEntryDlg.h"

#include "framework/Guard.h"
#include "plugin/messaging/Settings.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr UINT kClientSearchDelayMs = 700;
constexpr char kDateFormat[] = "dd/MMM/yyyy";

// After a pick from one of these the host may move the focus on.
constexpr int kHostDropDowns[] = {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_CLIENT_COMBO};

struct Change {
    int combo;
    void (OrderEntry::*handle)();
};
constexpr Change kChanges[] = {
    {IDC_EXCHANGE, &OrderEntry::OnExchangeChanged},
    {IDC_SERIES, &OrderEntry::OnSeriesChanged},
    {IDC_INVEST_BY, &OrderEntry::OnInvestTypeChanged},
};

} // namespace

COrderEntryDlg::COrderEntryDlg(HINSTANCE module, Session& session, framework::MessageBoxes& boxes)
    : DialogWindow(module, IDD_ORDER_ENTRY, boxes), m_session(session),
      m_link(session.lookup, kRxRequests, this, this), m_entry(session, *this, m_link.Control()),
      m_client(session), m_clientCombo(session), m_plannedDates(module, session) {}

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
    m_session.m_nSipOperationMode = operationMode;
    SetForegroundWindow(Dialog::Handle());
}

void COrderEntryDlg::ShutDown() {
    Destroy();
    m_link.Release();
}

void COrderEntryDlg::SetText(int control, std::string_view text) {
    // What the user did not type is not searched for.
    if (control == IDC_CLIENT_SEARCH)
        m_client.SetText(text);
    else
        DialogWindow::SetText(control, text);
}

void COrderEntryDlg::SetDigitsOnly(int edit, bool on) {
    DialogWindow::SetDigitsOnly(edit, on);
    m_value.SetFilter(!on);
}

void COrderEntryDlg::OnInit() {
    m_value.Attach(Item(IDC_VALUE).Handle());
    if (m_session.host.pu_get_entered_text_results)
        m_client.SetUp(Item(IDC_CLIENT_SEARCH).Handle(), OrderEntry::kName, kClientSearchDelayMs);
    else
        m_clientCombo.SetUp(Item(IDC_CLIENT_COMBO).Handle());
    if (!HasWindow()) return; // closed while the host was asked
    Item<framework::DatePicker>(IDC_START_DATE).SetFormat(kDateFormat);
    std::string customProducts;
    ReadWriteSetting(SettingMode::read, "SIP CUSTOM LIST", "CUSTOM PRODUCTS", customProducts);
    m_entry.Initialise(LocalNow(), customProducts);
}

void COrderEntryDlg::OnLaidOut() {
    LoadPeriodIcons();
    SetCaptionIcon(IDI_CALENDAR);
    if (!m_session.host.pu_resize_EditCtrlForFontChange) return;
    for (const int edit : {IDC_VALUE, IDC_PERIOD})
        if (HasWindow()) m_session.host.pu_resize_EditCtrlForFontChange(Item(edit).Handle());
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

std::optional<LRESULT> COrderEntryDlg::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_MOVE) m_client.CloseList();
    return std::nullopt;
}

bool COrderEntryDlg::OnCommand(const framework::Command& command) {
    switch (command.notification) {
    case BN_CLICKED:
        OnButton(command.id);
        return command.id != IDCANCEL;
    case EN_CHANGE:
        OnEditChanged(command.id);
        break;
    case CBN_SELCHANGE:
        for (const auto& [combo, handle] : kChanges)
            if (command.id == combo) (m_entry.*handle)();
        OnPlanChanged();
        break;
    case CBN_EDITCHANGE:
        if (command.id == IDC_CLIENT_COMBO) m_clientCombo.OnTextChanged();
        break;
    case CBN_SELENDOK:
        m_picked = true;
        break;
    case CBN_SELENDCANCEL:
        m_picked = false;
        break;
    case CBN_CLOSEUP:
        OnDropDownPicked(command.id);
        break;
    default:
        break;
    }
    return false;
}

void COrderEntryDlg::OnButton(int button) {
    if (button == IDC_SUBMIT) m_entry.Submit(LocalNow());
    if (button == IDC_CLIENT_SEARCH_MODE) m_client.OpenModeMenu(Item(button).Handle());
    if (button == IDC_PLAN_DATES) m_plannedDates.Open(Dialog::Handle(), m_entry.CurrentPlan(), FontSize());
}

void COrderEntryDlg::OnEditChanged(int edit) {
    if (edit == IDC_VALUE) m_value.OnTextChanged();
    if (edit == IDC_CLIENT_SEARCH) m_client.OnTextChanged();
    if (edit == IDC_VALUE || edit == IDC_PERIOD) OnPlanChanged();
}

std::optional<LRESULT> COrderEntryDlg::OnNotify(const NMHDR& notification) {
    if (notification.code == DTN_DATETIMECHANGE) OnPlanChanged();
    return std::nullopt;
}

void COrderEntryDlg::OnPlanChanged() {
    m_entry.ShowPlan();
    m_plannedDates.SetPlan(m_entry.CurrentPlan());
}

void COrderEntryDlg::OnDropDownPicked(int combo) {
    const bool picked = std::exchange(m_picked, false);
    const auto clearFocus = m_session.host.pu_clear_FocusFromDropDown;
    if (picked && clearFocus && std::ranges::find(kHostDropDowns, combo) != std::end(kHostDropDowns))
        clearFocus(Item(combo).Handle(), Dialog::Handle());
}

void COrderEntryDlg::OnResponse(void*, void* message, void*) noexcept {
    framework::Guard([&] {
        const auto held = Hold();
        m_entry.OnResponse(message);
    });
}

} // namespace planfold

#include "plugin/orderentry/window/SipFormControls.h"

#include "plugin/base/Settings.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr UINT kClientSearchDelayMs = 700;

// After a pick from one of these the host may move the focus on.
constexpr int kHostDropDowns[] = {IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL, IDC_CLIENT_COMBO};

} // namespace

void SipFormControls::SetUp(Pass pass, const std::string& searchName) {
    m_lists.Attach(m_dialog.Handle());
    m_value.Attach(m_dialog.Item(IDC_VALUE).Handle());
    m_quantity.Attach(m_dialog.Item(IDC_BASKET_QUANTITY).Handle());
    const auto picker = m_dialog.Item<framework::DatePicker>(IDC_START_DATE);
    picker.SetFormat(kDateFormat);
    m_calendar.Attach(picker.Handle());
    if (m_session.host.pu_get_entered_text_results)
        m_client.SetUp(pass, m_dialog.Item(IDC_CLIENT_SEARCH).Handle(), searchName, kClientSearchDelayMs);
    else
        m_clientCombo.SetUp(pass, m_dialog.Item(IDC_CLIENT_COMBO).Handle());
}

void SipFormControls::OnLaidOut() const {
    const auto resize = m_session.host.pu_resize_EditCtrlForFontChange;
    if (!resize) return;
    for (const int edit : {IDC_VALUE, IDC_PERIOD})
        if (!m_life.Across([&](Pass pass) { resize(pass, m_dialog.Item(edit).Handle()); })) return;
}

void SipFormControls::OnCommand(const framework::Command& command) {
    switch (command.notification) {
    case BN_CLICKED:
        if (command.id == IDC_CLIENT_SEARCH_MODE) m_client.OpenModeMenu(m_dialog.Item(command.id).Handle());
        break;
    case EN_CHANGE:
        if (command.id == IDC_VALUE) m_value.OnTextChanged();
        if (command.id == IDC_BASKET_QUANTITY) m_quantity.OnTextChanged();
        if (command.id == IDC_CLIENT_SEARCH) m_client.OnTextChanged();
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
        OnDropDownClosed(command.id);
        break;
    default:
        break;
    }
}

void SipFormControls::OnNotify(const NMHDR& notification) {
    if (notification.code == DTN_DROPDOWN) m_calendar.OnDropDown();
}

void SipFormControls::OnDropDownClosed(int combo) {
    const bool picked = std::exchange(m_picked, false);
    const auto clearFocus = m_session.host.pu_clear_FocusFromDropDown;
    if (picked && clearFocus && std::ranges::find(kHostDropDowns, combo) != std::end(kHostDropDowns))
        Lifetime::Last([&](Pass pass) { clearFocus(pass, m_dialog.Item(combo).Handle(), m_dialog.Handle()); });
}

std::string SipFormControls::CustomProducts() {
    std::string products;
    ReadWriteSetting(SettingMode::read, "SIP CUSTOM LIST", "CUSTOM PRODUCTS", products);
    return products;
}

} // namespace planfold

#include "plugin/shell/window/ControlBlock.h"

#include "plugin/shell/Globals.h"
#include "plugin/shell/HostCheck.h"
#include "sdk/korvex/CommonListCtrl.h"

namespace planfold {

AnyFunction FindInHost(const char* name) {
    return reinterpret_cast<AnyFunction>(GetProcAddress(g_hHostModule, name));
}

CPlanfoldControlBlock::CPlanfoldControlBlock(HINSTANCE module, Identity identity, StringManager& strings,
                                             framework::MessageBoxes& boxes, const FontArguments& font)
    : m_session(FindInHost, identity, strings), m_font(font), m_orderEntry(module, m_session, boxes),
      m_basket(module, m_session, boxes), m_restrictedDates(module, m_session, boxes),
      m_orderHistory(module, m_session, boxes),
      m_orderBook(module, m_session, boxes,
                  {[this](Pass, const sOrderinfo& record) { OpenForModify(record); },
                   [this](Pass, const sOrderinfo& record) { TellChanged(record); }},
                  [this](Pass pass, const std::string& number) { OpenOrderHistory(pass, number); }) {
    m_session.host = ResolveHostCallbacks(FindInHost);
    constexpr INITCOMMONCONTROLSEX classes{sizeof classes,
                                           ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
    InitCommonControlsEx(&classes);
}

void CPlanfoldControlBlock::ShutDown() {
    m_session.End();
    m_orderBook.ShutDown();
    m_orderHistory.ShutDown();
    m_restrictedDates.ShutDown();
    m_basket.ShutDown();
    m_orderEntry.ShutDown();
    m_keyboard.reset();
}

namespace {

SipRegistration ReadRegistration(const sOrderinfo& record) {
    struct Row {
        std::string SipRegistration::*member;
        OrderField field;
    };
    static constexpr Row rows[] = {
        {&SipRegistration::number, OrderField::registrationNumber},
        {&SipRegistration::exchange, OrderField::exchange},
        {&SipRegistration::frequency, OrderField::frequency},
        {&SipRegistration::orderType, OrderField::orderType},
        {&SipRegistration::product, OrderField::product},
        {&SipRegistration::totalPeriod, OrderField::totalPeriod},
        {&SipRegistration::installments, OrderField::installmentsRegistered},
        {&SipRegistration::tradingSymbol, OrderField::tradingSymbol},
        {&SipRegistration::action, OrderField::side},
        {&SipRegistration::investType, OrderField::investType},
        {&SipRegistration::amount, OrderField::amount},
        {&SipRegistration::quantity, OrderField::quantity},
        {&SipRegistration::startDate, OrderField::startDate},
        {&SipRegistration::account, OrderField::account},
        {&SipRegistration::nextExecutionDate, OrderField::nextExecutionDate},
        {&SipRegistration::endDate, OrderField::endDate},
        {&SipRegistration::status, OrderField::sipStatus},
    };
    SipRegistration registration;
    for (const auto& [member, field] : rows)
        registration.*member = record.Text(field);
    const bool cancelled = IsCancelled(registration.status) && !record.Text(OrderField::cancelledBy).empty();
    registration.changedBy = record.Text(cancelled ? OrderField::cancelledBy : OrderField::loginId);
    return registration;
}

} // namespace

void CPlanfoldControlBlock::OpenForModify(const sOrderinfo& record) {
    // A copy: the host is asked on the way, and may let the record change.
    const SipRegistration registration = ReadRegistration(record);
    if (SetHostsFont(m_orderEntry)) m_orderEntry.OpenForModify(registration);
}

void CPlanfoldControlBlock::TellChanged(const sOrderinfo& record) {
    if (m_orderEntry.Modifies(record.Number())) m_orderEntry.OnRegistrationChanged(ReadRegistration(record));
}

void CPlanfoldControlBlock::PrepareForPick(Pass pass, Notices& notices) {
    m_session.OpenHandles(pass, notices);
    for (const Frequency& frequency : kFrequencies)
        m_session.MinimumPeriods(frequency) = 0.0;
    if (m_session.host.pu_get_non_trading_dates_map && !m_session.m_pNonTradingDates)
        m_session.m_pNonTradingDates = m_session.host.pu_get_non_trading_dates_map(pass);
    if (m_session.userDirectory.empty()) FindSettingsPaths(pass);
}

void CPlanfoldControlBlock::FindSettingsPaths(Pass pass) {
    std::string dialogPositions;
    std::string userSettings;
    CString directory = m_session.String();
    if (m_session.host.pu_get_UserDirectory && m_session.host.pu_get_UserDirectory(pass, &directory)) {
        m_session.userDirectory = directory.View();
        dialogPositions = m_session.userDirectory + "\\DialogPos.ini";
        userSettings = m_session.userDirectory + "\\UserSetting.ini";
    }
    PassedString userSettingsPath(userSettings, m_session.strings);
    PassedString dialogPositionsPath(dialogPositions, m_session.strings);
    CCommonListCtrl::SetRecoveryFiles(userSettingsPath.Hand(), dialogPositionsPath.Hand());
}

void CPlanfoldControlBlock::ApplyFontPreference(Pass pass) {
    if (!m_session.host.pu_get_FontVariation) return;
    m_session.host.pu_get_FontVariation(pass, &m_nFontVariation, &m_nFontSize, m_font.third, m_font.fourth);
    const auto apply = [&](framework::Dialog& dialog) {
        dialog.SetFontSize(PreferredPointSize(dialog.TemplateFontSize(), m_nFontSize, m_nFontVariation));
    };
    apply(m_orderEntry);
    apply(m_basket);
    apply(m_restrictedDates);
    apply(m_orderHistory);
}

} // namespace planfold

#include "plugin/orderentry/OrderEntryForm.h"

#include "plugin/base/Codes.h"
#include "plugin/resources/resource.h"

namespace planfold {

bool OrderEntryForm::Fill(const LocalDateTime& now, std::string_view customProducts) {
    m_frequencyToShow.clear();
    m_names.Forget();
    if (!m_life.Across([&](Pass pass) { PrepareClient(pass); })) return false;
    m_view.SetDate(IDC_START_DATE, ToLocal(ToSeconds(now) + kSecondsPerDay));
    m_form.AddFirstEntries();
    m_view.Select(IDC_ACTION, 0);
    if (!m_form.FillProducts(customProducts)) return false;
    m_view.SetText(IDC_PERIOD, "1");
    m_session.m_nSipOperationMode = 0;
    m_view.Select(IDC_EXCHANGE, 0);
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return false;
    m_view.Select(IDC_INVEST_BY, 0);
    OnInvestTypeChanged();
    m_view.Select(IDC_ORDER_TYPE, 0);
    m_view.Select(IDC_PRODUCT, 0);
    m_view.Select(IDC_CLIENT_COMBO, 0);
    m_untouched = Read();
    m_broughtBack = false;
    return ShowPlan();
}

void OrderEntryForm::PrepareClient(Pass pass) {
    if (!m_form.ShowClientControl()) return;
    const auto write = m_session.host.pu_write_settings_to_json;
    if (!m_form.SearchesClients() || !write) return;
    const CString section = m_session.String("Client_Search");
    const CString key = m_session.String(kName);
    const CString on = m_session.String("1");
    write(pass, &section, &key, &on, 1);
}

bool OrderEntryForm::OnChosen(int combo) {
    if (combo == IDC_INVEST_BY) OnInvestTypeChanged();
    return m_form.OnChosen(combo);
}

void OrderEntryForm::OnInvestTypeChanged() {
    const std::string type = m_view.Text(IDC_INVEST_BY);
    m_view.SetText(IDC_VALUE, "");
    m_view.SetText(IDC_VALUE_LABEL, type);
    m_view.SetDigitsOnly(IDC_VALUE, type == "Quantity");
}

SipOrderForm OrderEntryForm::Read() const {
    SipOrderForm form = m_form.Read(IDC_VALUE);
    form.modifyMode = m_modifying.has_value();
    return form;
}

void OrderEntryForm::OnOperationMode(const Answer& answer) {
    if (!m_frequencies.OnAnswer(answer, !m_modifying)) return;
    // A list that comes late must not choose what the order in the form does not say.
    if (!m_frequencyToShow.empty()) m_form.Choose(IDC_FREQUENCY, m_frequencyToShow);
    m_untouched.frequency = m_view.Text(IDC_FREQUENCY);
    static_cast<void>(ShowPlan());
}

// What is typed in its place meanwhile stays: under a box of another window it may be the next order.
void OrderEntryForm::ClearSubmitted(const SipOrderForm& submitted) {
    m_untouched = submitted;
    m_untouched.value = m_untouched.totalPeriod = "";
    m_broughtBack = false;
    if (m_view.Text(IDC_VALUE) == submitted.value) m_view.SetText(IDC_VALUE, "");
    if (m_view.Text(IDC_PERIOD) == submitted.totalPeriod) m_view.SetText(IDC_PERIOD, "");
}

bool OrderEntryForm::FillFrom(const SipRegistration& registration, bool serverPeriods) {
    m_names.Forget();
    m_form.Fix(IDC_EXCHANGE, registration.exchange);
    m_form.Fix(IDC_FREQUENCY, registration.frequency);
    m_form.Fix(IDC_ORDER_TYPE, registration.orderType);
    m_form.Fix(IDC_PRODUCT, registration.product);
    if (serverPeriods) FrequencyList::ShowServerPeriods(m_view);
    m_view.SetText(IDC_PERIOD, serverPeriods ? registration.installments : registration.totalPeriod);
    m_view.Enable(IDC_PERIOD, true);

    const SymbolAndSeries scrip = SplitTradingSymbol(registration.tradingSymbol);
    m_form.Fix(IDC_SERIES, scrip.series);
    m_form.Fix(IDC_SYMBOL, scrip.symbol);
    m_form.Fix(IDC_ACTION, registration.action);

    std::string investType;
    Convert(kInvestTypeToDisplay, registration.investType, investType);
    if (!m_view.SelectText(IDC_INVEST_BY, investType)) m_view.Select(IDC_INVEST_BY, 0);
    OnInvestTypeChanged();
    m_view.Enable(IDC_INVEST_BY, false);
    m_view.SetText(IDC_VALUE,
                   m_view.Text(IDC_INVEST_BY) == "Amount" ? registration.amount : registration.quantity);

    const auto startDate = ReadServerDate(registration.startDate);
    if (!startDate) return false;
    m_view.SetDate(IDC_START_DATE, *startDate);
    m_view.Enable(IDC_START_DATE, false);
    m_form.FixClient(registration.account);
    return true;
}

bool OrderEntryForm::BringBack(const SipOrderForm& order) {
    if (!FillIn(order)) return false;
    m_broughtBack = true;
    m_untouched = Read();
    if (ShowPlan()) m_view.Focus(IDC_VALUE);
    return true;
}

bool OrderEntryForm::FillIn(const SipOrderForm& order) {
    m_form.Choose(IDC_EXCHANGE, order.exchange);
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return false;
    m_form.Choose(IDC_SERIES, order.series);
    if (!m_form.RefreshScrips(ScripLevel::series)) return false;
    return m_life.Across([&](Pass) { FillInBesideScrip(order); });
}

void OrderEntryForm::FillInBesideScrip(const SipOrderForm& order) {
    const auto choose = [&](int combo, const std::string& text) { m_form.Choose(combo, text); };
    choose(IDC_SYMBOL, order.symbol);
    choose(IDC_ACTION, order.action);
    choose(IDC_ORDER_TYPE, order.orderType);
    choose(IDC_PRODUCT, order.product);
    choose(IDC_INVEST_BY, order.investType);
    OnInvestTypeChanged();
    choose(IDC_FREQUENCY, m_frequencyToShow = order.frequency);
    m_view.SetDate(IDC_START_DATE, order.startDate);
    m_view.SetText(IDC_VALUE, order.value);
    m_view.SetText(IDC_PERIOD, order.totalPeriod);
    if (m_form.SearchesClients()) {
        m_view.SetText(IDC_CLIENT_SEARCH, order.account);
    } else if (!m_view.SelectText(IDC_CLIENT_COMBO, order.account)) {
        // A typed one need not be in the list.
        m_view.Select(IDC_CLIENT_COMBO, -1);
        m_view.SetText(IDC_CLIENT_COMBO, order.account);
    }
}

} // namespace planfold

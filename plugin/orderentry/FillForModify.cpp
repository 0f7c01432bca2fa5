// The order entry form over a registration that is to be changed.

#include "plugin/base/Codes.h"
#include "plugin/base/Text.h"
#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"

namespace planfold {

void OrderEntry::FillForModify(const SipRegistration& registration) {
    m_life.Renew();
    // Also when the filling stops half-way: no new order comes out of this form, and no change of the
    // registration that it showed before.
    const bool showedOne = m_modifying && !m_modifying->Number().empty();
    m_modifying.emplace();
    m_asksLater.reset();
    m_names.Forget();
    if (showedOne) {
        m_view.SetTitle(kName);
        m_view.SetText(IDC_SUBMIT, "Submit");
    }
    const bool serverPeriods = m_session.m_nSipOperationMode != 0;
    // A control that is filled tells the form, which asks the host what it shows.
    if (m_life.Across([&](Pass) { return FillFrom(registration, serverPeriods); }) != Reply::yes) return;
    m_modifying.emplace(registration, serverPeriods);
    m_view.SetTitle(Format("Planfold Modify Order: %s", registration.number.c_str()));
    m_view.SetText(IDC_SUBMIT, "Modify");
    if (ShowPlan()) m_view.Focus(IDC_VALUE);
}

bool OrderEntry::FillFrom(const SipRegistration& registration, bool serverPeriods) {
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

} // namespace planfold

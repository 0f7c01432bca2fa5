// An order that was refused, back in the form.

#include "plugin/orderentry/OrderEntry.h"
#include "plugin/resources/resource.h"

namespace planfold {

bool OrderEntry::BringBack() {
    if (FilledForModify() || m_submitting) return false;
    const auto order = m_kept.TakeNext();
    if (!order) return false;
    const SipOrderForm shown = ReadForm();
    if (m_broughtBack || shown != m_untouched) m_kept.SetAside(shown);
    if (!FillIn(*order)) {
        m_kept.SetAside(*order);
        return true;
    }
    m_broughtBack = true;
    m_untouched = ReadForm();
    if (ShowPlan()) m_view.Focus(IDC_VALUE);
    return true;
}

bool OrderEntry::FillIn(const SipOrderForm& order) {
    m_form.Choose(IDC_EXCHANGE, order.exchange);
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return false;
    m_form.Choose(IDC_SERIES, order.series);
    if (!m_form.RefreshScrips(ScripLevel::series)) return false;
    return m_life.Across([&](Pass) { FillInBesideScrip(order); });
}

void OrderEntry::FillInBesideScrip(const SipOrderForm& order) {
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

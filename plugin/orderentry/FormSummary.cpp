// What the order entry form says of the order in it.

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/orderentry/OrderEntryForm.h"
#include "plugin/resources/resource.h"

namespace planfold {

Plan OrderEntryForm::CurrentPlan() const {
    if (m_modifying && !m_modifying->Number().empty())
        return PlanToCome(m_modifying->Now(), ReadModification());
    return {m_view.Date(IDC_START_DATE), m_view.Text(IDC_FREQUENCY), LeadingInteger(m_view.Text(IDC_PERIOD))};
}

ModifiedPlan OrderEntryForm::ReadModification() const {
    const SipRegistration& registration = m_modifying->Now();
    ModifiedPlan plan;
    plan.periodsBefore = m_modifying->Periods();
    plan.periods = LeadingInteger(m_view.Text(IDC_PERIOD));
    plan.progress = ProgressOf(registration, plan.periodsBefore, m_session.ClosedDays());
    plan.action = registration.action;
    plan.valueBefore = m_modifying->Value();
    plan.paused = registration.status == "Paused";
    const std::string label = m_view.Text(IDC_INVEST_BY);
    Convert(kInvestTypeToServer, label, plan.investType);
    plan.value = m_view.Text(IDC_VALUE);
    if (ValueToWire(label, plan.value)) plan.value.clear();
    return plan;
}

std::string OrderEntryForm::DescribeForm() const {
    const Plan plan = CurrentPlan();
    if (m_modifying && !m_modifying->Number().empty()) return DescribeModification(ReadModification(), plan);
    const std::string label = m_view.Text(IDC_INVEST_BY);
    std::string value = m_view.Text(IDC_VALUE);
    if (ValueToWire(label, value)) value.clear();
    std::string investType;
    Convert(kInvestTypeToServer, label, investType);
    return DescribePlan(plan, m_view.Text(IDC_ACTION), investType, value);
}

bool OrderEntryForm::ShowPlan() {
    const SipOrderForm form = Read();
    const std::string tradingSymbol = m_modifying ? m_modifying->Now().tradingSymbol : std::string();
    if (!m_life.Across([&](Pass pass) { m_names.Ask(pass, form, tradingSymbol); })) return false;
    std::string text = m_names.Text();
    const std::string notice = m_modifying ? m_modifying->Notice() : m_kept.Notice();
    for (const std::string& part : {notice, DescribeForm()})
        if (!part.empty()) text.append(text.empty() ? "" : "\n").append(part);
    const bool alarms = m_modifying ? !notice.empty() : m_kept.IsAlarming();
    m_view.ShowSummary(text, alarms || m_names.ClientIsUnknown());
    m_view.Enable(IDC_PLAN_DATES, PlannedDate(CurrentPlan(), 0).has_value());
    return true;
}

} // namespace planfold

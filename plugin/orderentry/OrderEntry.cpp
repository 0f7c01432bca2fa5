#include "plugin/orderentry/OrderEntry.h"

#include "plugin/messaging/Codes.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Text.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

#include <algorithm>

namespace planfold {

namespace {

// Shown when the sending is over, so that a box does not hold up the next press.
struct KeptNotice final : Notices {
    void ShowMessage(std::string_view shown) override { text = shown; }
    std::string text;
};

} // namespace

const AnswerHandler<OrderEntry> OrderEntry::kAnswers[] = {
    {"get_sip_operation_mode", &OrderEntry::HandleOperationMode, OnError::handle},
    {"add_sip_orders", &OrderEntry::HandleUserText},
    {"modify_sip_order", &OrderEntry::HandleModified, OnError::logAndHandle},
};

void OrderEntry::Initialise(const LocalDateTime& now, std::string_view customProducts) {
    const int opening = ++m_openings;
    m_modifying.reset();
    PrepareClient();
    if (!StillOpen(opening)) return;
    m_view.SetDate(IDC_START_DATE, ToLocal(ToSeconds(now) + kSecondsPerDay));
    m_form.AddFirstEntries();
    m_view.Select(IDC_ACTION, 0);
    m_form.FillProducts(customProducts);
    if (!StillOpen(opening)) return;

    m_view.SetText(IDC_PERIOD, "1");
    m_session.m_nSipOperationMode = 0;
    m_view.Select(IDC_EXCHANGE, 0);
    m_form.RefreshScrips(ScripLevel::exchange);
    if (!StillOpen(opening)) return;
    m_view.Select(IDC_INVEST_BY, 0);
    OnInvestTypeChanged();
    m_view.Select(IDC_ORDER_TYPE, 0);
    m_view.Select(IDC_PRODUCT, 0);
    m_view.Select(IDC_CLIENT_COMBO, 0);
    m_frequencies.Ask();
}

void OrderEntry::PrepareClient() {
    m_form.ShowClientControl();
    const auto write = m_session.host.pu_write_settings_to_json;
    if (!m_form.SearchesClients() || !write) return;
    const CString section = m_session.String("Client_Search");
    const CString key = m_session.String(kName);
    const CString on = m_session.String("1");
    write(&section, &key, &on, 1);
}

void OrderEntry::OnInvestTypeChanged() {
    const std::string type = m_view.Text(IDC_INVEST_BY);
    m_view.SetText(IDC_VALUE, "");
    m_view.SetText(IDC_VALUE_LABEL, type);
    m_view.SetDigitsOnly(IDC_VALUE, type == "Quantity");
}

SipOrderForm OrderEntry::ReadForm() const {
    SipOrderForm form = m_form.Read(IDC_VALUE);
    form.modifyMode = FilledForModify();
    return form;
}

void OrderEntry::Submit(const LocalDateTime& now) {
    if (m_submitting) return;
    const int opening = m_openings;
    const Outcome outcome = CheckAndSend(now);
    if (m_session.Ended()) return;
    if (outcome.focusValue) m_view.Focus(IDC_VALUE);
    if (!outcome.text.empty()) m_view.ShowMessage(outcome.text);
    if (!outcome.form || !StillOpen(opening)) return;
    // Only what was submitted: under a box of another window the user may have typed the next order.
    if (m_view.Text(IDC_VALUE) == outcome.form->value) m_view.SetText(IDC_VALUE, "");
    if (m_view.Text(IDC_PERIOD) == outcome.form->totalPeriod) m_view.SetText(IDC_PERIOD, "");
}

bool OrderEntry::StillOpen(int opening) const {
    return opening == m_openings && m_view.IsOpen() && !m_session.Ended();
}

OrderEntry::Outcome OrderEntry::CheckAndSend(const LocalDateTime& now) {
    m_submitting = true;
    struct Done {
        bool& flag;
        ~Done() { flag = false; }
    } done{m_submitting};

    const int opening = m_openings;
    const SipOrderForm form = ReadForm();
    const std::string number = m_modifying.value_or("");
    sSipOrderData record;
    const auto refusal = ValidateSipOrder(m_session, m_view.Handle(), form, now, record);
    if (!StillOpen(opening)) return {};
    if (refusal) return {refusal->text, refusal->focusValue};
    KeptNotice notice;
    if (!form.modifyMode)
        SendAddSipOrders(m_session, m_control, notice, record, form.exchange);
    else if (SendModifySipOrder(m_session, m_control, notice, number, record))
        m_sentModifications.push_back(number);
    return {notice.text, false, form};
}

Plan OrderEntry::CurrentPlan() const {
    return {m_view.Date(IDC_START_DATE), m_view.Text(IDC_FREQUENCY), LeadingInteger(m_view.Text(IDC_PERIOD))};
}

void OrderEntry::ShowPlan() {
    const Plan plan = CurrentPlan();
    const std::string label = m_view.Text(IDC_INVEST_BY);
    std::string value = m_view.Text(IDC_VALUE);
    if (ValueToWire(label, value)) value.clear();
    std::string investType;
    Convert(kInvestTypeToServer, label, investType);
    const std::string text = DescribePlan(plan, m_view.Text(IDC_ACTION), investType, value);
    if (m_view.Text(IDC_PLAN_SUMMARY) != text) m_view.SetText(IDC_PLAN_SUMMARY, text);
    m_view.Enable(IDC_PLAN_DATES, !text.empty());
}

void OrderEntry::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<OrderEntry>(*this, m_session, kAnswers, Answer(message));
}

void OrderEntry::HandleOperationMode(const Answer& answer) {
    if (m_frequencies.OnAnswer(answer, !FilledForModify())) ShowPlan();
}

void OrderEntry::HandleUserText(const Answer& answer) {
    const std::string text = FieldText(answer.message, tag::userText);
    if (!text.empty()) m_view.ShowMessage(text);
}

void OrderEntry::HandleModified(const Answer& answer) {
    std::string number = FieldText(answer.message, tag::registrationNumber);
    if (number.empty() && !m_sentModifications.empty()) number = m_sentModifications.front();
    const auto sent = std::ranges::find(m_sentModifications, number);
    if (sent != m_sentModifications.end()) m_sentModifications.erase(sent);
    if (answer.hasError) return;
    HandleUserText(answer);
    // Another registration may have been opened in the window meanwhile.
    if (!m_session.Ended() && m_modifying == number) m_view.Close();
}

} // namespace planfold

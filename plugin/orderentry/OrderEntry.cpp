#include "plugin/orderentry/OrderEntry.h"

#include "plugin/messaging/Codes.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Rights.h"
#include "plugin/messaging/Tags.h"
#include "plugin/messaging/Text.h"
#include "plugin/orderentry/OperationMode.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::string_view kDefaultProduct = "CNC";
constexpr std::string_view kDefaultSeries = "EQ";

struct FirstEntry {
    int combo;
    std::string_view text;
};
constexpr FirstEntry kFirstEntries[] = {
    {IDC_EXCHANGE, "NSE"},      {IDC_EXCHANGE, "BSE"},          {IDC_ACTION, "SIP"},
    {IDC_ACTION, "SWP"},        {IDC_INVEST_BY, "Amount"},      {IDC_INVEST_BY, "Quantity"},
    {IDC_ORDER_TYPE, "MARKET"}, {IDC_PRODUCT, kDefaultProduct},
};

// Shown when the sending is over, so that a box does not hold up the next press.
struct KeptNotice final : Notices {
    void ShowMessage(std::string_view shown) override { text = shown; }
    std::string text;
};

std::vector<std::string> SplitAtCommas(std::string_view list) {
    std::vector<std::string> parts;
    for (std::size_t end = 0; end != list.npos;) {
        end = list.find(',');
        parts.emplace_back(list.substr(0, end));
        if (end != list.npos) list.remove_prefix(end + 1);
    }
    return parts;
}

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
    for (const auto& [combo, text] : kFirstEntries)
        m_view.AddItem(combo, text);
    m_view.Select(IDC_ACTION, 0);
    FillProducts(customProducts);
    if (!StillOpen(opening)) return;

    m_view.SetText(IDC_PERIOD, "1");
    m_session.m_nSipOperationMode = 0;
    m_view.Select(IDC_EXCHANGE, 0);
    RefreshScrips(ScripLevel::exchange);
    if (!StillOpen(opening)) return;
    m_view.Select(IDC_INVEST_BY, 0);
    OnInvestTypeChanged();
    m_view.Select(IDC_ORDER_TYPE, 0);
    m_view.Select(IDC_PRODUCT, 0);
    m_view.Select(IDC_CLIENT_COMBO, 0);
    m_earlierModeRequests = m_openModeRequests;
    m_frequenciesListed = false;
    if (SendGetSipOperationMode(m_session, m_control, m_view)) ++m_openModeRequests;
}

void OrderEntry::PrepareClient() {
    const HostCallbacks& host = m_session.host;
    m_view.Show(IDC_CLIENT_SEARCH, SearchesClients());
    m_view.Show(IDC_CLIENT_SEARCH_MODE, SearchesClients());
    m_view.Show(IDC_CLIENT_COMBO, !SearchesClients());
    if (!SearchesClients()) {
        if (host.pu_load_client_id_combo) host.pu_load_client_id_combo(m_view.Handle(), IDC_CLIENT_COMBO);
    } else if (host.pu_write_settings_to_json) {
        const CString section = m_session.String("Client_Search");
        const CString key = m_session.String(kName);
        const CString on = m_session.String("1");
        host.pu_write_settings_to_json(&section, &key, &on, 1);
    }
}

void OrderEntry::FillProducts(std::string_view customProducts) {
    const auto load = Find<sdk::fn::pu_load_product_type_combo>(m_session.lookup, "pu_load_product_type_combo");
    if (load) load(m_view.Handle(), IDC_HOST_PRODUCTS);
    if (!m_session.HasRight(kCustomRight)) return;
    const std::vector<std::string> known = m_view.Items(IDC_HOST_PRODUCTS);
    for (const std::string& product : SplitAtCommas(customProducts))
        if (product != kDefaultProduct && std::ranges::find(known, product) != known.end())
            m_view.AddItem(IDC_PRODUCT, product);
}

void OrderEntry::RefreshScrips(ScripLevel changed) {
    if (m_session.host.pu_fill_scrip_combos)
        m_session.host.pu_fill_scrip_combos(m_view.Handle(), IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL,
                                            IDC_HOST_SCRIP_1, IDC_HOST_SCRIP_2, IDC_HOST_SCRIP_3,
                                            static_cast<int>(changed));
    if (changed == ScripLevel::exchange && !m_view.SelectText(IDC_SERIES, kDefaultSeries))
        m_view.Select(IDC_SERIES, 0);
    m_view.Select(IDC_SYMBOL, 0);
}

void OrderEntry::OnExchangeChanged() {
    RefreshScrips(ScripLevel::exchange);
}

void OrderEntry::OnSeriesChanged() {
    RefreshScrips(ScripLevel::series);
}

void OrderEntry::OnInvestTypeChanged() {
    const std::string type = m_view.Text(IDC_INVEST_BY);
    m_view.SetText(IDC_VALUE, "");
    m_view.SetText(IDC_VALUE_LABEL, type);
    m_view.SetDigitsOnly(IDC_VALUE, type == "Quantity");
}

SipOrderForm OrderEntry::ReadForm() const {
    struct FormRow {
        int control;
        std::string SipOrderForm::*member;
    };
    static constexpr FormRow rows[] = {
        {IDC_EXCHANGE, &SipOrderForm::exchange},    {IDC_SERIES, &SipOrderForm::series},
        {IDC_SYMBOL, &SipOrderForm::symbol},        {IDC_ACTION, &SipOrderForm::action},
        {IDC_ORDER_TYPE, &SipOrderForm::orderType}, {IDC_PRODUCT, &SipOrderForm::product},
        {IDC_FREQUENCY, &SipOrderForm::frequency},  {IDC_INVEST_BY, &SipOrderForm::investType},
        {IDC_VALUE, &SipOrderForm::value},          {IDC_PERIOD, &SipOrderForm::totalPeriod},
    };
    SipOrderForm form;
    for (const auto& [control, member] : rows)
        form.*member = m_view.Text(control);
    form.client = m_view.Text(SearchesClients() ? IDC_CLIENT_SEARCH : IDC_CLIENT_COMBO);
    form.startDate = m_view.Date(IDC_START_DATE);
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
    const OperationModeAnswer mode = ReadOperationMode(m_session, answer);
    if (m_openModeRequests > 0) --m_openModeRequests;
    if (!mode.understood || FilledForModify()) return;
    // A window closed and opened again within the server's delay gets the answers of both.
    if (m_frequenciesListed && m_earlierModeRequests > 0) {
        --m_earlierModeRequests;
        return;
    }
    m_frequenciesListed = true;
    for (const std::string& frequency : mode.frequencies)
        m_view.AddItem(IDC_FREQUENCY, frequency);
    m_view.Select(IDC_FREQUENCY, 0);
    ShowPlan();
    if (!mode.serverPeriods) return;
    ShowServerPeriods();
}

void OrderEntry::ShowServerPeriods() {
    m_view.SetText(IDC_PERIOD_LABEL, "SIP Periods");
    for (const int control : {IDC_PERIOD_HINT, IDC_PERIOD_ICON_1, IDC_PERIOD_ICON_2})
        m_view.Show(control, false);
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

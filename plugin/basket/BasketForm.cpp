#include "plugin/basket/BasketForm.h"

#include "plugin/basket/SipOrderFields.h"
#include "plugin/messaging/Codes.h"
#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Text.h"
#include "plugin/resources/resource.h"

namespace planfold {

namespace {

constexpr FormTexts kTexts{"Enter Token", "Please select the ClientID", "Enter valid Qty"};

std::string Shown(CodeTable table, std::string_view text) {
    std::string shown(text);
    Convert(table, text, shown);
    return shown;
}

} // namespace

BasketTexts FormOrder::Texts() const {
    BasketTexts texts;
    for (const auto& [field, member] : kSipOrderFields)
        texts[field] = data.*member;
    texts[ValueField(data.investType)] = data.amountOrQuantity;
    texts[BasketField::series] = series;
    texts[BasketField::symbol] = symbol;
    texts[BasketField::startDateText] = startDateText;
    texts[BasketField::remarks] = "NA";
    return texts;
}

void BasketForm::Fill(const LocalDateTime& now, std::string_view customProducts) {
    const HostWindow window = m_view.Handle();
    // By whoever the host let in; another window fills itself.
    const auto gone = [&] { return m_view.Handle() != window; };
    m_form.ShowClientControl();
    if (gone()) return;
    m_view.SetDate(IDC_START_DATE, ToLocal(ToSeconds(now) + kSecondsPerDay));
    m_form.AddFirstEntries();
    m_form.FillProducts(customProducts);
    if (gone()) return;
    m_view.SetText(IDC_PERIOD, "1");
    m_view.Select(IDC_EXCHANGE, 0);
    m_form.RefreshScrips(ScripLevel::exchange);
    if (gone()) return;
    for (const int combo : {IDC_ACTION, IDC_INVEST_BY, IDC_ORDER_TYPE, IDC_PRODUCT})
        m_view.Select(combo, 0);
    m_view.SetDigitsOnly(IDC_BASKET_QUANTITY, true);
    OnInvestTypeChanged();
    m_form.ShowActiveClient();
}

void BasketForm::OnInvestTypeChanged() {
    const bool byQuantity = m_view.Text(IDC_INVEST_BY) == "Quantity";
    m_view.Enable(IDC_VALUE, !byQuantity);
    m_view.Enable(IDC_BASKET_QUANTITY, byQuantity);
}

std::optional<Refusal> BasketForm::Read(const LocalDateTime& now, FormOrder& order) const {
    const bool byQuantity = m_view.Text(IDC_INVEST_BY) == "Quantity";
    const SipOrderForm form = m_form.Read(byQuantity ? IDC_BASKET_QUANTITY : IDC_VALUE);
    order.series = form.series;
    order.symbol = form.symbol;
    order.startDateText = FormatPickerDate(form.startDate);
    return ValidateSipOrder(m_session, m_view.Handle(), form, now, order.data, kTexts);
}

int BasketForm::Show(const BasketTexts& texts) {
    const HostWindow window = m_view.Handle();
    int notShown = 0;
    const auto choose = [&](int combo, std::string_view text) { notShown += !ShowChoice(combo, text); };
    choose(IDC_EXCHANGE, Shown(kExchangeToDisplay, texts[BasketField::exchangeSegment]));
    OnExchangeChanged();
    choose(IDC_SERIES, texts[BasketField::series]);
    OnSeriesChanged();
    if (m_view.Handle() != window) return notShown;
    choose(IDC_SYMBOL, texts[BasketField::symbol]);
    choose(IDC_ACTION, Shown(kPlanToDisplay, texts[BasketField::action]));
    choose(IDC_ORDER_TYPE, Shown(kMarketOrderTypeToDisplay, texts[BasketField::orderType]));
    choose(IDC_PRODUCT, texts[BasketField::product]);
    choose(IDC_INVEST_BY, Shown(kInvestTypeToDisplay, texts[BasketField::investType]));
    OnInvestTypeChanged();
    choose(IDC_FREQUENCY, texts[BasketField::frequency]);
    const std::string_view amount = texts[BasketField::amount];
    m_view.SetText(IDC_VALUE, amount.empty() ? "" : Format("%.2lf", LeadingReal(amount) / 100));
    m_view.SetText(IDC_BASKET_QUANTITY, texts[BasketField::quantity]);
    m_view.SetText(IDC_PERIOD, texts[BasketField::totalPeriod]);
    notShown += !ShowStartDate(texts[BasketField::startDateText]);
    notShown += !ShowClient(texts[BasketField::clientId]);
    return notShown;
}

bool BasketForm::ShowChoice(int combo, std::string_view text) {
    if (m_view.SelectText(combo, text)) return true;
    // An entry that is not the row's would be taken for it.
    m_view.Select(combo, -1);
    return false;
}

bool BasketForm::ShowStartDate(std::string_view text) {
    const std::int64_t seconds = ParseDate(text);
    if (seconds < 0) return false;
    m_view.SetDate(IDC_START_DATE, ToLocal(seconds));
    return true;
}

bool BasketForm::ShowClient(std::string_view client) {
    if (!m_form.SearchesClients()) return ShowChoice(IDC_CLIENT_COMBO, client);
    m_view.SetText(IDC_CLIENT_SEARCH, client);
    return true;
}

void BasketForm::ClearAfterModify() {
    m_view.SetText(IDC_VALUE, "");
    m_view.SetText(IDC_PERIOD, "");
}

BasketRules BasketForm::Rules(const LocalDateTime& now) const {
    BasketRules rules;
    rules.products = m_view.Items(IDC_PRODUCT);
    rules.frequencies = m_view.Items(IDC_FREQUENCY);
    rules.serverPeriods = m_session.m_nSipOperationMode == 1;
    for (std::size_t i = 0; i < rules.minimums.size(); ++i)
        rules.minimums[i] = m_session.*kFrequencies[i].minimum;
    rules.now = ToSeconds(now);
    return rules;
}

} // namespace planfold

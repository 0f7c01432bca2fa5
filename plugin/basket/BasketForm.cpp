#include "plugin/basket/BasketForm.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/resources/resource.h"

namespace planfold {

namespace {

// A choice that shows nothing is refused as the field of a line would be.
struct ChoiceRule {
    int combo;
    std::string SipOrderForm::*shown;
    const char* refusal;
};
constexpr ChoiceRule kChoices[] = {
    {IDC_EXCHANGE, &SipOrderForm::exchange, kInvalidToken},
    {IDC_SERIES, &SipOrderForm::series, kInvalidToken},
    {IDC_SYMBOL, &SipOrderForm::symbol, kInvalidToken},
    {IDC_ACTION, &SipOrderForm::action, kInvalidAction},
    {IDC_INVEST_BY, &SipOrderForm::investType, kInvalidInvestType},
    {IDC_FREQUENCY, &SipOrderForm::frequency, kInvalidFrequency},
    {IDC_ORDER_TYPE, &SipOrderForm::orderType, kInvalidOrderType},
    {IDC_PRODUCT, &SipOrderForm::product, kInvalidProduct},
};

// Of whole paise, as a line's amount is read.
std::optional<std::string> RupeesOf(std::string_view amount) {
    constexpr std::size_t mostDigits = 15;
    if (amount.empty()) return std::string();
    const double paise = LeadingReal(amount);
    const std::string whole = Format("%.lf", paise);
    if (!AllDigits(whole) || whole.size() > mostDigits || (paise == 0.0 && !AllDigits(amount)))
        return std::nullopt;
    return InRupees(LeadingInteger(whole));
}

std::string Display(CodeTable table, std::string_view text) {
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
    texts[BasketField::userText] = "NA";
    return texts;
}

bool BasketForm::Fill(const LocalDateTime& now, std::string_view customProducts) {
    m_frequencyToShow.clear();
    if (!m_form.ShowClientControl()) return false;
    m_view.SetDate(IDC_START_DATE, ToLocal(ToSeconds(now) + kSecondsPerDay));
    m_form.AddFirstEntries();
    if (!m_form.FillProducts(customProducts)) return false;
    m_view.SetText(IDC_PERIOD, "1");
    m_view.Select(IDC_EXCHANGE, 0);
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return false;
    for (const int combo : {IDC_ACTION, IDC_INVEST_BY, IDC_ORDER_TYPE, IDC_PRODUCT})
        m_view.Select(combo, 0);
    m_view.SetDigitsOnly(IDC_BASKET_QUANTITY, true);
    OnInvestTypeChanged();
    return m_form.ShowActiveClient();
}

void BasketForm::OnChosen(int combo) {
    if (combo == IDC_INVEST_BY)
        OnInvestTypeChanged();
    else
        static_cast<void>(m_form.OnChosen(combo));
}

void BasketForm::OnInvestTypeChanged() {
    const bool byQuantity = m_view.Text(IDC_INVEST_BY) == "Quantity";
    m_view.Enable(IDC_VALUE, !byQuantity);
    m_view.Enable(IDC_BASKET_QUANTITY, byQuantity);
}

void BasketForm::OnOperationMode(const Answer& answer) {
    // A list that comes late must not choose what the record in the form does not say.
    if (m_frequencies.OnAnswer(answer, true) && !m_frequencyToShow.empty())
        m_form.Choose(IDC_FREQUENCY, m_frequencyToShow);
}

int BasketForm::ValueEdit() const {
    return m_view.Text(IDC_INVEST_BY) == "Quantity" ? IDC_BASKET_QUANTITY : IDC_VALUE;
}

SipOrderForm BasketForm::Shown() const {
    return m_form.Read(ValueEdit());
}

std::optional<Refusal> BasketForm::Read(Pass pass, const LocalDateTime& now, FormOrder& order) const {
    const int value = ValueEdit();
    const SipOrderForm form = m_form.Read(value);
    order.series = form.series;
    order.symbol = form.symbol;
    order.startDateText = FormatPickerDate(form.startDate);
    if (auto refusal =
            ValidateSipOrder(pass, m_session, m_view.Handle(), form, now, order.data, kBasketTexts)) {
        if (refusal->focus == IDC_VALUE) refusal->focus = value;
        return refusal;
    }
    for (const auto& [combo, shown, refusal] : kChoices)
        if ((form.*shown).empty()) return Refusal{refusal, combo};
    if (!AllDigits(form.totalPeriod)) return Refusal{kInvalidPeriod, IDC_PERIOD};
    return std::nullopt;
}

int BasketForm::Show(Pass, const BasketTexts& texts, const LocalDateTime& now) {
    int notShown = 0;
    const auto choose = [&](int combo, std::string_view text) { notShown += !m_form.Choose(combo, text); };
    choose(IDC_EXCHANGE, Display(kExchangeToDisplay, texts[BasketField::exchange]));
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return notShown;
    choose(IDC_SERIES, texts[BasketField::series]);
    if (!m_form.RefreshScrips(ScripLevel::series)) return notShown;
    choose(IDC_SYMBOL, texts[BasketField::symbol]);
    choose(IDC_ACTION, Display(kPlanToDisplay, texts[BasketField::side]));
    choose(IDC_ORDER_TYPE, Display(kMarketOrderTypeToDisplay, texts[BasketField::orderType]));
    choose(IDC_PRODUCT, texts[BasketField::product]);
    choose(IDC_INVEST_BY, Display(kInvestTypeToDisplay, texts[BasketField::investType]));
    OnInvestTypeChanged();
    choose(IDC_FREQUENCY, texts[BasketField::frequency]);
    m_frequencyToShow = texts[BasketField::frequency];
    // The one that the order is not by may hold anything.
    const std::string_view quantity = texts[BasketField::quantity];
    const bool amountShown = ShowNumber(IDC_VALUE, RupeesOf(texts[BasketField::amount]));
    const bool quantityShown = ShowNumber(
        IDC_BASKET_QUANTITY, AllDigits(quantity) ? std::optional<std::string>(quantity) : std::nullopt);
    notShown +=
        !(ValueField(texts[BasketField::investType]) == BasketField::amount ? amountShown : quantityShown);
    m_view.SetText(IDC_PERIOD, texts[BasketField::totalPeriod]);
    notShown += !ShowStartDate(texts[BasketField::startDateText], now);
    notShown += !ShowClient(texts[BasketField::account]);
    return notShown;
}

int BasketForm::ShowRow(Pass, const BasketTexts& texts, const LocalDateTime& now) {
    const auto shown = m_life.Across([&](Pass pass) { return Show(pass, texts, now); });
    if (!shown) return 0;
    const auto named = m_life.Across([&](Pass pass) {
        return AskTradingSymbol(pass, m_session, texts[BasketField::exchange], texts[BasketField::series],
                                texts[BasketField::symbol]);
    });
    if (!named || named->empty() || *named == texts[BasketField::tradingSymbol]) return *shown;
    // A file may call it by the names of another, which the form would then order.
    m_view.Select(IDC_SYMBOL, -1);
    return *shown + 1;
}

bool BasketForm::ShowNumber(int edit, const std::optional<std::string>& text) {
    m_view.SetText(edit, text.value_or(""));
    return text.has_value();
}

// The picker always shows a day: of a text that is none, the day before, with which no order can start.
bool BasketForm::ShowStartDate(std::string_view text, const LocalDateTime& now) {
    const std::int64_t seconds = ParseDate(text);
    m_view.SetDate(IDC_START_DATE, ToLocal(seconds < 0 ? ToSeconds(now) - kSecondsPerDay : seconds));
    return seconds >= 0;
}

bool BasketForm::ShowClient(std::string_view client) {
    if (!m_form.SearchesClients()) return m_form.Choose(IDC_CLIENT_COMBO, client);
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
    for (const Frequency& frequency : kFrequencies)
        rules.minimums[IndexOf(frequency)] = m_session.MinimumPeriods(frequency);
    rules.now = ToSeconds(now);
    return rules;
}

BasketRules BasketForm::RulesOfUnsent(const LocalDateTime& now) const {
    BasketRules rules = Rules(now);
    rules.serverPeriods = true;
    rules.minimums = {};
    rules.frequencies.clear();
    for (const Frequency& frequency : kFrequencies)
        rules.frequencies.emplace_back(frequency.word);
    return rules;
}

} // namespace planfold

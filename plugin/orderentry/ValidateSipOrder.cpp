#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/SipOrder.h"
#include "plugin/resources/resource.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace planfold {

namespace {

using Verdict = std::optional<Refusal>;

constexpr int kMostYearsAhead = 2;

Refusal ValueRefusal(std::string text) {
    return {.text = std::move(text), .focus = IDC_VALUE};
}

Refusal PeriodRefusal(std::string text) {
    return {.text = std::move(text), .focus = IDC_PERIOD};
}

void ScripFromDialog(Pass pass, const Session& session, HostWindow dialog, sSipOrderData& record) {
    CString symbol = session.String();
    CString exchangeAndToken = session.String();
    session.host.pu_get_trading_symbol_n_token(pass, dialog, IDC_EXCHANGE, IDC_SERIES, IDC_SYMBOL,
                                               IDC_HOST_SCRIP_1, IDC_HOST_SCRIP_2, IDC_HOST_SCRIP_3, &symbol,
                                               &exchangeAndToken);
    record.tradingSymbol = symbol.View();
    const std::string_view pair = exchangeAndToken.View();
    const std::size_t bar = pair.find('|');
    record.exchange = pair.substr(0, bar);
    if (bar != pair.npos) record.token = pair.substr(bar + 1);
}

void ScripFromMaster(Pass pass, const Session& session, const SipOrderForm& form, sSipOrderData& record) {
    Convert(kExchangeToServer, form.exchange, record.exchange);
    record.tradingSymbol = AskTradingSymbol(pass, session, record.exchange, form.series, form.symbol);
    session.Log(pass, [&] {
        return Format(
            "SIP OrderDetails Get Trading Symbol -Exng : %s,Series : %s,Symbol : %s,TradingSymbol : %s ",
            record.exchange.c_str(), form.series.c_str(), form.symbol.c_str(), record.tradingSymbol.c_str());
    });
    const auto details = AskScripDetails(pass, session, form.exchange, record.tradingSymbol);
    record.token = details ? TextOf(details->token) : std::string_view();
    session.Log(pass, [&] {
        return Format("SIP OrderDetails Get Token -Exng : %s,Trading Symbol : %s,Token : %s ",
                      form.exchange.c_str(), record.tradingSymbol.c_str(), record.token.c_str());
    });
}

Verdict QuantityToWire(std::string& value, const char* malformed) {
    if (value.empty()) return ValueRefusal("Enter Quantity");
    if (value == "." || value == "0") return ValueRefusal(malformed);
    const std::int64_t shares = LeadingInteger(value);
    if (shares == 0) return ValueRefusal("Quantity cannot be zero");
    if (shares > INT_MAX || LeadingReal(value) > INT_MAX)
        return ValueRefusal(Format(" should not be more than integer max value(%d)", INT_MAX));
    value = Format("%d", static_cast<int>(std::max<std::int64_t>(shares, INT_MIN)));
    return std::nullopt;
}

Verdict AmountToWire(std::string& value) {
    constexpr std::size_t mostPaiseDigits = 9;
    constexpr std::size_t mostFromPoint = 8;
    if (value.empty()) return ValueRefusal("Enter Amount");
    const double rupees = LeadingReal(value);
    if (rupees == 0.0) return ValueRefusal("Enter valid Amount");
    value = Format("%.lf", rupees * 100);
    const std::size_t point = value.find('.');
    for (std::size_t i = 0; i < value.size(); ++i)
        if (i != point && (value[i] < '0' || value[i] > '9')) return ValueRefusal("Please enter valid amount.");
    if (point == value.npos ? value.size() > mostPaiseDigits : point > mostPaiseDigits)
        return ValueRefusal("cannot have more than 7 digits in rupees part of Amount");
    if (point != value.npos && value.size() - point > mostFromPoint)
        return ValueRefusal("Paise Part cannot Exceed above .99");
    return std::nullopt;
}

} // namespace

PeriodRules PeriodRulesOf(const Session& session) {
    PeriodRules rules{.serverPeriods = session.m_nSipOperationMode == 1};
    for (const Frequency& frequency : kFrequencies)
        rules.minimums[IndexOf(frequency)] = session.MinimumPeriods(frequency);
    return rules;
}

std::optional<Refusal> CheckPeriods(const PeriodRules& rules, std::string_view frequency,
                                    const std::string& periods) {
    if (periods.empty()) return PeriodRefusal("Enter a Month.");
    if (periods == "0") return PeriodRefusal("Enter valid Month.");
    const std::int64_t period = LeadingInteger(periods);
    if (rules.serverPeriods) {
        const Frequency* known = FindFrequency(frequency);
        const double minimum = known ? rules.minimums[IndexOf(*known)] : 0.0;
        if (known && static_cast<double>(period) < minimum)
            return PeriodRefusal(Format("Minimum SIP value is %.0lf", minimum));
    } else if (period < 1 || period > 60) {
        return PeriodRefusal("Month Should be Between 1 and 60");
    }
    return std::nullopt;
}

std::optional<Refusal> ValueToWire(std::string_view investType, std::string& value, const FormTexts& texts) {
    if (investType == "Quantity") return QuantityToWire(value, texts.malformedQuantity);
    if (investType == "Amount") return AmountToWire(value);
    return std::nullopt;
}

std::optional<Refusal> CheckStartDate(const LocalDateTime& start, const LocalDateTime& now) {
    const LocalDateTime today = now.Midnight();
    if (start.Midnight() < today) return Refusal{"Start Date Cannot be less that today's Date", IDC_START_DATE};
    if (IsLater(start, today, CountDaysInYears(today, kMostYearsAhead)))
        return Refusal{"Start Date Cannot be more than 2 years from today's Date", IDC_START_DATE};
    return std::nullopt;
}

std::optional<Refusal> ValidateSipOrder(Pass pass, const Session& session, HostWindow dialog,
                                        const SipOrderForm& form, const LocalDateTime& now,
                                        sSipOrderData& record, const FormTexts& texts) {
    if (session.host.pu_get_trading_symbol_n_token)
        ScripFromDialog(pass, session, dialog, record);
    else
        ScripFromMaster(pass, session, form, record);
    if (texts.noToken && record.token.empty()) return Refusal{texts.noToken, IDC_SYMBOL};
    if (texts.noClient && form.account.empty())
        return Refusal{texts.noClient,
                       session.host.pu_get_entered_text_results ? IDC_CLIENT_SEARCH : IDC_CLIENT_COMBO};
    Convert(kPlanToServer, form.action, record.side);
    Convert(kPlanToSideLabel, form.action, record.sideWord);
    Convert(kOrderTypeToServer, form.orderType, record.orderType);
    record.product = form.product;
    record.frequency = form.frequency;

    if (!form.modifyMode)
        if (auto refusal = CheckStartDate(form.startDate, now)) return refusal;
    record.startDate = std::to_string(DateSeconds(form.startDate));

    record.totalPeriod = form.totalPeriod;
    if (auto refusal = CheckPeriods(PeriodRulesOf(session), form.frequency, form.totalPeriod)) return refusal;
    record.customerFirm = "C";
    record.validity = "DAY";
    record.account = form.account;

    Convert(kInvestTypeToServer, form.investType, record.investType);
    record.amountOrQuantity = form.value;
    return ValueToWire(form.investType, record.amountOrQuantity, texts);
}

} // namespace planfold

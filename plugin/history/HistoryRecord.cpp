#include "plugin/history/HistoryRecord.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/HostQuestions.h"
#include "sdk/Tags.h"

#include <algorithm>

namespace planfold {

namespace {

using Conversion = void (*)(std::string_view wire, double priceDivisor, std::string& text);

void AsItIs(std::string_view wire, double, std::string& text) {
    text = wire;
}

template <const CodeTable& table>
void InWords(std::string_view wire, double, std::string& text) {
    Convert(table, wire, text);
}

void Price(std::string_view wire, double priceDivisor, std::string& text) {
    if (!wire.empty()) text = Format("%.2lf", static_cast<double>(LeadingInteger(wire)) / priceDivisor);
}

enum class Told { byOrder, byOrderAndTrade, onceTraded };

struct RowField {
    HistoryField field;
    std::uint32_t tag;
    Told told = Told::byOrder;
    Conversion conversion = AsItIs;
};
constexpr RowField kRowFields[] = {
    {HistoryField::loginId, tag::loginId},
    {HistoryField::account, tag::account},
    {HistoryField::exchange, tag::exchange, Told::byOrderAndTrade, InWords<kExchangeToDisplay>},
    {HistoryField::tradingSymbol, tag::tradingSymbol, Told::byOrderAndTrade},
    {HistoryField::registrationNumber, tag::registrationNumber, Told::byOrderAndTrade},
    {HistoryField::orderNumber, tag::orderNumber, Told::byOrderAndTrade},
    {HistoryField::orderStatus, tag::sipStatus},
    {HistoryField::orderSource, tag::orderSource},
    {HistoryField::placementTime, tag::placementTime},
    {HistoryField::side, tag::side, Told::byOrder, InWords<kPlanToDisplay>},
    {HistoryField::orderType, tag::orderType, Told::byOrder, InWords<kOrderTypeToDisplay>},
    {HistoryField::quantity, tag::quantity},
    {HistoryField::price, tag::price, Told::byOrder, Price},
    {HistoryField::tradedPrice, tag::tradedPrice, Told::onceTraded, Price},
    {HistoryField::tradedQuantity, tag::tradedQuantity},
    {HistoryField::fillDetailA, tag::fillDetailA, Told::onceTraded},
    {HistoryField::fillDetailB, tag::fillDetailB, Told::onceTraded},
    {HistoryField::userText, tag::userText},
};
static_assert(std::size(kRowFields) == static_cast<std::size_t>(HistoryField::count) - 2);

constexpr HistoryField kOfTrades[] = {HistoryField::fillDetailA, HistoryField::fillDetailB,
                                      HistoryField::tradedPrice};

template <class Wanted>
sOrderHistory ReadRow(void* message, double priceDivisor, Wanted&& wanted) {
    sOrderHistory record;
    for (const auto& [field, tag, told, conversion] : kRowFields) {
        const auto wire = wanted(told) ? FieldView(message, tag) : std::nullopt;
        if (wire) conversion(*wire, priceDivisor, record[field]);
    }
    return record;
}

} // namespace

double AskPriceDivisor(Pass pass, const Session& session, void* message) {
    const auto details = AskScripDetails(pass, session, FieldView(message, tag::exchange).value_or(""),
                                         FieldView(message, tag::tradingSymbol).value_or(""));
    return ScaleOf(details ? &*details : nullptr).multiplier;
}

sOrderHistory ReadHistoryOrder(void* message, double priceDivisor) {
    const auto tradedQuantity = FieldView(message, tag::tradedQuantity);
    const bool traded = tradedQuantity && *tradedQuantity != "0";
    sOrderHistory order =
        ReadRow(message, priceDivisor, [&](Told told) { return told != Told::onceTraded || traded; });
    order.fillPending =
        traded && std::ranges::any_of(kOfTrades, [&](HistoryField field) { return order[field].empty(); });
    return order;
}

sOrderHistory ReadHistoryTrade(void* message, double priceDivisor) {
    return ReadRow(message, priceDivisor, [](Told told) { return told != Told::byOrder; });
}

void ApplyTrade(const sOrderHistory& trade, sOrderHistory& order) {
    for (const HistoryField field : kOfTrades)
        order[field] = trade[field];
}

HistoryDetails TakeDetails(sOrderHistory& order) {
    static constexpr HistoryField shown[] = {HistoryField::account,       HistoryField::exchange,
                                             HistoryField::tradingSymbol, HistoryField::orderType,
                                             HistoryField::side,          HistoryField::registrationNumber,
                                             HistoryField::tradedPrice,   HistoryField::tradedQuantity};
    static_assert(std::size(shown) + 1 == kHistoryDetailCount);
    HistoryDetails details;
    for (std::size_t i = 0; i < std::size(shown); ++i) {
        std::string& text = order[shown[i]];
        if (text.empty()) text = "NA";
        details[i] = text;
    }
    details.back() = order[HistoryField::fillDetailA] + " " + order[HistoryField::fillDetailB];
    return details;
}

} // namespace planfold

#include "plugin/orderbook/OrderRow.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/HostClients.h"
#include "sdk/Tags.h"

#include <array>
#include <charconv>

namespace planfold {

namespace {

// What the meaning of a field hangs on, and room for a text that is made.
struct Reading {
    std::string_view investType;
    bool installments;
    const std::optional<std::string>& accountName;
    std::array<char, 320> made{}; // the longest amount has 312 characters
};

// The record's text from the one on the wire; none leaves the field as it was.
using Conversion = std::optional<std::string_view> (*)(Reading& reading, std::string_view wire);

std::optional<std::string_view> AsItIs(Reading&, std::string_view wire) {
    return wire;
}

template <const CodeTable& table>
std::optional<std::string_view> InWords(Reading&, std::string_view wire) {
    for (const CodeRow& row : table)
        if (row.from == wire) return row.to;
    return std::nullopt;
}

std::optional<std::string_view> WhenQuantity(Reading& reading, std::string_view wire) {
    if (reading.investType != "qty") return std::nullopt;
    return wire;
}

std::optional<std::string_view> RupeesWhenAmount(Reading& reading, std::string_view wire) {
    if (reading.investType != "value") return std::nullopt;
    const double rupees = LeadingReal(wire) / 100;
    char* const made = reading.made.data();
    const auto [end, fault] =
        std::to_chars(made, made + reading.made.size(), rupees, std::chars_format::fixed, 2);
    return std::string_view(made, static_cast<std::size_t>(end - made));
}

std::optional<std::string_view> WhenMonths(Reading& reading, std::string_view wire) {
    if (reading.installments) return std::nullopt;
    return wire;
}

std::optional<std::string_view> WhenInstallments(Reading& reading, std::string_view wire) {
    if (!reading.installments) return std::nullopt;
    return wire;
}

std::optional<std::string_view> AccountName(Reading& reading, std::string_view) {
    return reading.accountName;
}

struct RowField {
    OrderField field;
    std::uint32_t tag;
    Conversion conversion = AsItIs;
};
constexpr RowField kRowFields[] = {
    {OrderField::loginId, tag::loginId},
    {OrderField::exchange, tag::exchange, InWords<kExchangeToDisplay>},
    {OrderField::tradingSymbol, tag::tradingSymbol},
    {OrderField::product, tag::product},
    {OrderField::side, tag::side, InWords<kPlanToDisplay>},
    {OrderField::orderType, tag::orderType, InWords<kMarketOrderTypeToDisplay>},
    {OrderField::investType, tag::investType},
    {OrderField::quantity, tag::amountOrQuantity, WhenQuantity},
    {OrderField::amount, tag::amountOrQuantity, RupeesWhenAmount},
    {OrderField::frequency, tag::frequency},
    {OrderField::startDate, tag::startDate},
    {OrderField::totalPeriod, tag::totalPeriod, WhenMonths},
    {OrderField::installmentsRegistered, tag::totalPeriod, WhenInstallments},
    {OrderField::nextExecutionDate, tag::nextExecutionDate},
    {OrderField::registrationNumber, tag::registrationNumber},
    {OrderField::account, tag::account},
    {OrderField::accountName, tag::account, AccountName},
    {OrderField::sipStatus, tag::sipStatus},
    {OrderField::orderId, tag::orderId},
    {OrderField::streamName, tag::streamName},
    {OrderField::registrationDate, tag::registrationDate},
    {OrderField::orderSource, tag::orderSource},
    {OrderField::userText, tag::userText},
    {OrderField::cancelledDate, tag::cancelledDate},
    {OrderField::cancelledBy, tag::cancelledBy},
    {OrderField::endDate, tag::endDate},
    {OrderField::token, tag::token},
};
static_assert(std::size(kRowFields) == kOrderFieldCount);

} // namespace

std::optional<std::string> AskAccountName(Pass pass, const Session& session, void* message) {
    const auto client = FieldView(message, tag::account);
    if (!client || !session.host.pu_get_client_name) return std::nullopt;
    return AskClientName(pass, session, *client);
}

void ReadOrderRow(void* message, bool installments, const std::optional<std::string>& accountName,
                  sOrderinfo& record) {
    Reading reading{record.Text(OrderField::investType), installments, accountName};
    OrderChanges changes;
    for (const auto& [field, tag, conversion] : kRowFields) {
        const auto wire = FieldView(message, tag);
        if (!wire) continue;
        if (field == OrderField::investType) reading.investType = *wire;
        changes[field] = conversion(reading, *wire);
    }
    record.Apply(changes);
}

} // namespace planfold

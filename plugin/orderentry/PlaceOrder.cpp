#include "plugin/orderentry/PlaceOrder.h"

#include "plugin/messaging/Numbers.h"
#include "plugin/messaging/Request.h"
#include "plugin/messaging/Tags.h"
#include "plugin/messaging/Text.h"

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

// The order and what is found out while its request is built.
struct AddSipOrder {
    Session& session;
    const sSipOrderData& order;
    std::string_view exchangeShown;
    // Copies: a menu pick under the host's question sets the session's anew.
    std::string loginId = session.identity.loginId;
    std::string peerIdA = session.identity.peerIdA;
    std::string peerIdB = session.identity.peerIdB;
    std::optional<std::string> orderId{};
    std::string operationMode{};
};

enum class Outcome { sent, failed };

// Ten fields, in this order; the amount in rupees once the order is sent.
void LogOutcome(const AddSipOrder& add, Outcome outcome) {
    const sSipOrderData& order = add.order;
    std::string value = order.amountOrQuantity;
    if (outcome == Outcome::sent && order.investType == "value")
        value = Format("%.2lf", static_cast<double>(LeadingInteger(value)) / 100);
    add.session.Log(Format(
        "%s %s SIP Order %s : Trigger Pending %s %s at %s %s %s for period : %s Months Client ID : %s by %s",
        std::string(add.exchangeShown).c_str(), order.sideLabel.c_str(),
        outcome == Outcome::sent ? ": Status" : "Failed Status", order.product.c_str(),
        order.tradingSymbol.c_str(), value.c_str(), order.validity.c_str(), order.frequency.c_str(),
        order.totalPeriod.c_str(), order.client.c_str(), add.loginId.c_str()));
}

template <std::string sSipOrderData::*member>
Value Of(AddSipOrder& add) {
    return add.order.*member;
}

Value OrderId(AddSipOrder& add) {
    add.orderId = add.session.FreshIdentifier();
    return add.orderId;
}

// The host decides only the flag: whatever else it answers, the order goes out without one.
Value CautionaryFlag(AddSipOrder& add) {
    const auto ask = add.session.host.pu_invoke_caution_order_confirmation;
    if (!ask) return std::nullopt;
    const Session& session = add.session;
    const CString client = session.String(add.order.client);
    const CString investType = session.String(add.order.investType);
    const CString product = session.String(add.order.product);
    const CString value = session.String(add.order.amountOrQuantity);
    const CString symbol = session.String(add.order.tradingSymbol);
    const CString exchange = session.String(add.order.exchangeSegment);
    switch (ask(&client, &investType, &product, &value, &symbol, &exchange)) {
    case 0:
        return "N";
    case 1:
        return "Y";
    default:
        return std::nullopt;
    }
}

Value OperationMode(AddSipOrder& add) {
    if (add.session.m_nSipOperationMode == 0) return std::nullopt;
    add.operationMode = Format("%d", add.session.m_nSipOperationMode);
    return add.operationMode;
}

using Order = sSipOrderData;

constexpr RequestField<AddSipOrder> kFields[] = {
    {tag::requestName, [](AddSipOrder&) -> Value { return "add_sip_orders"; },
     "Failed to add the request add_sip_orders"},
    {tag::exchange, Of<&Order::exchangeSegment>, "Failed to add the Exchange segment"},
    {tag::token, Of<&Order::token>, "Failed to add the Token",
     [](AddSipOrder& add) { LogOutcome(add, Outcome::failed); }},
    {tag::tradingSymbol, Of<&Order::tradingSymbol>, "Failed to add the Scrip Symbol"},
    {tag::side, Of<&Order::side>, "Failed to mention either buy or sell"},
    {tag::orderType, Of<&Order::orderType>, "Failed to mention the order Type"},
    {tag::product, Of<&Order::product>, "Failed to add the Product Type"},
    {tag::investType, Of<&Order::investType>, "Failed to add the Amount/Quantity"},
    {tag::amountOrQuantity, Of<&Order::amountOrQuantity>, "Failed to add Amount or Quantity"},
    {tag::frequency, Of<&Order::frequency>, "Failed to add the Frequency"},
    {tag::startDate, Of<&Order::startDate>, "Failed to add the Start Date"},
    {tag::totalPeriod, Of<&Order::totalPeriod>, "Failed to add the Total Period"},
    {tag::loginId, [](AddSipOrder& add) -> Value { return add.loginId; }, "Failed to add User"},
    {tag::customerFirm, Of<&Order::customerFirm>, "Failed to add customer Firm Id"},
    {tag::account, Of<&Order::client>, "Failed to add Account ID"},
    {tag::validity, Of<&Order::validity>, "Failed to specify the day"},
    {tag::peerIdA, [](AddSipOrder& add) -> Value { return add.peerIdA; }, "Failed to add Broker Name"},
    {tag::peerIdB, [](AddSipOrder& add) -> Value { return add.peerIdB; }, "Failed to add Branch Name"},
    {tag::orderId, OrderId, "Failed to add Order ID"},
    {tag::cautionaryFlag, CautionaryFlag, "Failed to add Cautionary Flag"},
    {tag::operationMode, OperationMode, "Failed to add Mode"},
    {tag::orderSource, [](AddSipOrder&) -> Value { return "TWS"; }, "Failed to add Order Source"},
};

constexpr Request<AddSipOrder> kRequest{kFields, "Sending Request add_sip_orders Failed"};

} // namespace

bool SendAddSipOrders(Session& session, RxControl* control, Notices& notices, const sSipOrderData& order,
                      std::string_view exchangeShown) {
    AddSipOrder add{session, order, exchangeShown};
    if (!SendRequest(session, control, notices, kRequest, add)) return false;
    LogOutcome(add, Outcome::sent);
    return true;
}

} // namespace planfold

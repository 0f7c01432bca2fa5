#include "plugin/orderentry/PlaceOrder.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

// The order and what is found out while its request is built.
struct AddSipOrder {
    Pass pass;
    Session& session;
    const sSipOrderData& order;
    const std::optional<std::string>& orderId;
    std::string_view exchangeShown;
    const BasketPlace* place = nullptr; // null: an order of its own
    // Copies: a menu pick under the host's question sets the session's anew.
    std::string loginId = session.identity.loginId;
    std::string peerIdA = session.identity.peerIdA;
    std::string peerIdB = session.identity.peerIdB;
    std::string operationMode{};
    std::string sequence{};
};

enum class Outcome { sent, failed };

// Ten fields, in this order; the amount in rupees once the order is sent.
std::string OutcomeLine(const AddSipOrder& add, Outcome outcome) {
    const sSipOrderData& order = add.order;
    const bool isSent = outcome == Outcome::sent;
    const bool inRupees = isSent && order.investType == "value";
    const std::string rupees = inRupees ? InRupees(LeadingInteger(order.amountOrQuantity)) : std::string();
    return Joined({add.exchangeShown,
                   " ",
                   order.sideWord,
                   " SIP Order ",
                   isSent ? ": Status" : "Failed Status",
                   " : Trigger Pending ",
                   order.product,
                   " ",
                   order.tradingSymbol,
                   " at ",
                   inRupees ? rupees : order.amountOrQuantity,
                   " ",
                   order.validity,
                   " ",
                   order.frequency,
                   " for period : ",
                   order.totalPeriod,
                   " Months Client ID : ",
                   order.account,
                   " by ",
                   add.loginId});
}

void LogOutcome(const AddSipOrder& add, Outcome outcome) {
    add.session.Log(add.pass, [&] { return OutcomeLine(add, outcome); });
}

template <std::string sSipOrderData::*member>
Value Of(AddSipOrder& add) {
    return add.order.*member;
}

// The host decides only the flag: whatever else it answers, the order goes out without one.
Value CautionaryFlag(AddSipOrder& add) {
    const auto ask = add.session.host.pu_invoke_caution_order_confirmation;
    if (!ask) return std::nullopt;
    const Session& session = add.session;
    const CString client = session.String(add.order.account);
    const CString investType = session.String(add.order.investType);
    const CString product = session.String(add.order.product);
    const CString value = session.String(add.order.amountOrQuantity);
    const CString symbol = session.String(add.order.tradingSymbol);
    const CString exchange = session.String(add.order.exchange);
    switch (ask(add.pass, &client, &investType, &product, &value, &symbol, &exchange)) {
    case 0:
        return "N";
    case 1:
        return "Y";
    default:
        return std::nullopt;
    }
}

// A basket asks the host before, once for all its rows.
Value BasketCautionaryFlag(AddSipOrder& add) {
    if (add.place->cautionary) return *add.place->cautionary ? "Y" : "N";
    return std::nullopt;
}

Value Sequence(AddSipOrder& add) {
    add.sequence = std::to_string(add.place->serialNumber);
    return add.sequence;
}

Value OperationMode(AddSipOrder& add) {
    if (add.session.m_nSipOperationMode == 0) return std::nullopt;
    add.operationMode = std::to_string(add.session.m_nSipOperationMode);
    return add.operationMode;
}

using Order = sSipOrderData;
using Field = RequestField<AddSipOrder>;

template <std::size_t... counts>
constexpr auto Join(const Field (&... parts)[counts]) {
    std::array<Field, (counts + ...)> fields{};
    auto to = fields.begin();
    ((to = std::ranges::copy(parts, to).out), ...);
    return fields;
}

constexpr Field kOrderFields[] = {
    {tag::exchange, Of<&Order::exchange>, "Failed to add the Exchange segment"},
    {tag::token, Of<&Order::token>, "Failed to add the Token",
     [](AddSipOrder& add) {
         if (!add.place) LogOutcome(add, Outcome::failed);
     }},
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
    {tag::account, Of<&Order::account>, "Failed to add Account ID"},
    {tag::validity, Of<&Order::validity>, "Failed to specify the day"},
    {tag::peerIdA, [](AddSipOrder& add) -> Value { return add.peerIdA; }, "Failed to add Broker Name"},
    {tag::peerIdB, [](AddSipOrder& add) -> Value { return add.peerIdB; }, "Failed to add Branch Name"},
};
constexpr Field kOrderId[] = {
    {tag::orderId, [](AddSipOrder& add) -> Value { return add.orderId; }, "Failed to add Order ID"}};
constexpr Field kMode[] = {{tag::operationMode, OperationMode, "Failed to add Mode"}};
constexpr Field kOrderSource[] = {
    {tag::orderSource, [](AddSipOrder&) -> Value { return "TWS"; }, "Failed to add Order Source"}};
constexpr Field kCaution[] = {{tag::cautionaryFlag, CautionaryFlag, "Failed to add Cautionary Flag"}};
constexpr Field kSequence[] = {{tag::echoedNumber, Sequence, "Failed to add sequence"}};
// The text is the basket's own.
constexpr Field kBasketCaution[] = {{tag::cautionaryFlag, BasketCautionaryFlag, "Failed to add Order ID"}};
constexpr Field kLocation[] = {
    {tag::location, [](AddSipOrder&) -> Value { return "1"; }, "Failed to add Location Id Tag"}};

constexpr auto kFormFields = Join(kOrderFields, kOrderId, kCaution, kMode, kOrderSource);
constexpr auto kBasketFields =
    Join(kOrderFields, kMode, kSequence, kOrderId, kBasketCaution, kOrderSource, kLocation);

constexpr Request<AddSipOrder> RequestOf(std::span<const Field> fields) {
    return {"add_sip_orders", "Failed to add the request add_sip_orders", fields,
            "Sending Request add_sip_orders Failed"};
}
constexpr auto kFormRequest = RequestOf(kFormFields);
constexpr auto kBasketRequest = RequestOf(kBasketFields);

} // namespace

bool SendAddSipOrders(Pass pass, Session& session, RxControl* control, Notices& notices,
                      const sSipOrderData& order, const std::optional<std::string>& orderId,
                      std::string_view exchangeShown, const BasketPlace* place) {
    AddSipOrder add{pass, session, order, orderId, exchangeShown, place};
    if (!SendRequest(pass, session, control, notices, place ? kBasketRequest : kFormRequest, add)) return false;
    LogOutcome(add, Outcome::sent);
    return true;
}

} // namespace planfold

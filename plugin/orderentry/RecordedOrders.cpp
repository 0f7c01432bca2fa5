#include "plugin/orderentry/RecordedOrders.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/orderentry/PlannedDates.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

// A server's text has to leave room for what to do.
constexpr std::size_t kLongestText = 160;

} // namespace

std::string InShort(std::string_view text) {
    std::string shown(text.substr(0, kLongestText));
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return text.size() > kLongestText ? shown + "..." : shown;
}

std::string DescribeRefusal(std::string_view text, std::string_view code) {
    const std::string shown = InShort(text);
    return "Refused: " + shown + (shown.empty() ? "" : " ") + "(code " + InShort(code) + ").";
}

std::optional<std::vector<OrderPlace>>
BeforeSending::Places(std::span<const RecordedOrder> orders,
                      const std::function<bool(std::string_view question)>& ask) {
    if (auto places = m_record.Sending(orders)) return places;
    m_agreed = m_agreed || ask(kNoRecordQuestion);
    if (!m_agreed) return std::nullopt;
    return m_record.SendingUnwritten(orders);
}

void RecordOutcome(const Session& session, OrderPlace place, OrderEvent done, const Answer& answer) {
    const std::string text = FieldText(answer.message, tag::userText);
    session.record.Tell(place, answer.hasError ? OrderEvent::refused : done,
                        answer.hasError ? DescribeRefusal(text, answer.errorCode) : text,
                        FieldText(answer.message, tag::registrationNumber));
}

void RecordChanged(const Session& session, std::string_view request, std::string_view registration,
                   OrderEvent done, const Answer& answer) {
    const RecordedOrder named = RecordedChange(session, request, registration);
    RecordOutcome(session, session.record.Ledger().Find(named.Texts()), done, answer);
}

std::string ChangedNumber(const Answer& answer) {
    const std::string number = FieldText(answer.message, tag::registrationNumber);
    return number.empty() ? FieldText(answer.message, tag::echoedNumber) : number;
}

OrderPlace PlaceOf(const Session& session, const Answer& answer) {
    const std::string orderId = FieldText(answer.message, tag::orderId);
    if (orderId.empty()) return kNoOrder;
    RecordTexts texts;
    texts[RecordField::orderId] = orderId;
    return session.record.Ledger().Find(texts);
}

const std::string& StartDates::Text(std::string_view seconds) {
    if (m_text.empty() || seconds != m_seconds) {
        m_seconds = seconds;
        m_text = FormatPlannedDate(ToLocal(LeadingInteger(seconds)));
    }
    return m_text;
}

RecordedOrder RecordedNewOrder(const Session& session, const sSipOrderData& order, std::string_view orderId,
                               std::string_view startDate, const OrderOrigin& origin) {
    const std::string line = origin.line > 0 ? std::to_string(origin.line) : std::string();
    RecordTexts texts;
    texts[RecordField::orderId] = orderId;
    texts[RecordField::loginId] = session.identity.loginId;
    texts[RecordField::source] = origin.source;
    texts[RecordField::line] = line;
    texts[RecordField::account] = order.account;
    texts[RecordField::exchange] = order.exchange;
    texts[RecordField::tradingSymbol] = order.tradingSymbol;
    texts[RecordField::side] = order.side;
    texts[RecordField::investType] = order.investType;
    texts[RecordField::value] = order.amountOrQuantity;
    texts[RecordField::frequency] = order.frequency;
    texts[RecordField::startDate] = startDate;
    texts[RecordField::periods] = order.totalPeriod;
    const std::string text = "add_sip_orders: " + order.orderType + ' ' + order.product;
    texts[RecordField::text] = text;
    return RecordedOrder(texts);
}

std::optional<sSipOrderData> OrderOf(const RecordedOrder& recorded) {
    constexpr std::string_view request = "add_sip_orders: ";
    const std::string_view text = recorded.SentText();
    const std::int64_t start = ParseDate(recorded.Text(RecordField::startDate));
    if (!text.starts_with(request) || start < 0) return std::nullopt;
    const std::string_view kind = text.substr(request.size());
    const std::size_t blank = kind.find(' ');
    if (blank == kind.npos) return std::nullopt;
    sSipOrderData order;
    order.orderType = kind.substr(0, blank);
    order.product = kind.substr(blank + 1);
    order.customerFirm = "C";
    order.validity = "DAY";
    order.startDate = std::to_string(start);
    order.account = recorded.Text(RecordField::account);
    order.exchange = recorded.Text(RecordField::exchange);
    order.tradingSymbol = recorded.Text(RecordField::tradingSymbol);
    order.side = recorded.Text(RecordField::side);
    order.sideWord = order.side == "S" ? "SELL" : "BUY";
    order.investType = recorded.Text(RecordField::investType);
    order.amountOrQuantity = recorded.Text(RecordField::value);
    order.frequency = recorded.Text(RecordField::frequency);
    order.totalPeriod = recorded.Text(RecordField::periods);
    return order;
}

RecordedOrder RecordedChange(const Session& session, std::string_view request, std::string_view registration,
                             std::string_view value, std::string_view periods, std::string_view orderId,
                             std::string_view investType, std::string_view account) {
    RecordTexts texts;
    texts[RecordField::account] = account;
    texts[RecordField::orderId] = orderId;
    texts[RecordField::investType] = investType;
    texts[RecordField::registration] = registration;
    texts[RecordField::loginId] = session.identity.loginId;
    texts[RecordField::source] = "form";
    texts[RecordField::value] = value;
    texts[RecordField::periods] = periods;
    texts[RecordField::text] = request;
    return RecordedOrder(texts);
}

} // namespace planfold

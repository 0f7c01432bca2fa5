// What the order record says of requests that place or change a registration.
#pragma once

#include "plugin/messaging/Answer.h"
#include "plugin/orderentry/SipOrder.h"
#include "plugin/record/OrderLedger.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// Where an order came from: the form, or a line of a basket's file.
struct OrderOrigin {
    std::string_view source = "form";
    int line = 0; // from 1; 0 without one
};

// "05-Mar-2027" of an order's start date, which is seconds since 1970. Most orders of a file start on the same
// day.
class StartDates {
public:
    // Valid until the next call.
    const std::string& Text(std::string_view seconds);

private:
    std::string m_seconds, m_text;
};
RecordedOrder RecordedNewOrder(const Session& session, const sSipOrderData& order, std::string_view orderId,
                               std::string_view startDate, const OrderOrigin& origin = {});

// What was sent, read back from the record. None when the record lacks something; the token is not recorded.
std::optional<sSipOrderData> OrderOf(const RecordedOrder& recorded);

// A text from outside as a part of a line: not too long, and without what ends one.
std::string InShort(std::string_view text);
// What the server said to a request, in one line.
std::string DescribeRefusal(std::string_view text, std::string_view code);

// The answer to what was sent: `done` is what it tells without an error.
void RecordOutcome(const Session& session, OrderPlace place, OrderEvent done, const Answer& answer);
// The same of a change, which is known by its request and the registration.
void RecordChanged(const Session& session, std::string_view request, std::string_view registration,
                   OrderEvent done, const Answer& answer);
// The registration that the answer to a change names; empty when it names none.
std::string ChangedNumber(const Answer& answer);
// The order whose identifier the answer carries; kNoOrder without one.
OrderPlace PlaceOf(const Session& session, const Answer& answer);

// The names of the requests that change a registration.
inline constexpr std::string_view kModifySipOrder = "modify_sip_order";
inline constexpr std::string_view kCancelSipOrder = "cancel_sip_order";
inline constexpr std::string_view kPauseSipOrder = "pause_sip_order";
inline constexpr std::string_view kResumeSipOrder = "resume_sip_order";

// Value and periods are in the server's words, and empty unless they change; `investType` says what the value
// is.
RecordedOrder RecordedChange(const Session& session, std::string_view request, std::string_view registration,
                             std::string_view value = {}, std::string_view periods = {},
                             std::string_view orderId = {}, std::string_view investType = {},
                             std::string_view account = {});

// What is sent is on the disk before, or the dealer agrees that it is not: asked once for all that belongs
// together.
class BeforeSending {
public:
    explicit BeforeSending(OrderRecord& record) : m_record(record) {}

    // What comes now does not belong to what was sent before.
    void Renew() { m_agreed = false; }
    // Its places in the record; none when it must not be sent. `ask` puts the question and says whether the
    // dealer agrees, and is there to send it.
    std::optional<std::vector<OrderPlace>> Places(std::span<const RecordedOrder> orders,
                                                  const std::function<bool(std::string_view question)>& ask);

private:
    OrderRecord& m_record;
    bool m_agreed = false;
};

// What is asked when the record cannot be written.
inline constexpr char kNoRecordQuestion[] = "The record of what is sent cannot be written. Should the terminal "
                                            "end before the answer comes, nobody could tell "
                                            "what was sent.\n\nSend it without a record?";

} // namespace planfold

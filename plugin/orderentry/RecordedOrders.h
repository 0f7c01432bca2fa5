// What the order record says of requests that place or change a registration.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"
#include "plugin/record/OrderLedger.h"

#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// Where an order came from: the form, or a line of a basket's file.
struct OrderOrigin {
    std::string_view source = "form";
    int line = 0; // from 1; 0 without one
};

RecordedOrder RecordedNewOrder(const Session& session, const sSipOrderData& order, std::string_view orderId,
                               const OrderOrigin& origin = {});

// `value` is in the server's words, and empty with the periods unless they change.
RecordedOrder RecordedChange(const Session& session, std::string_view request, std::string_view registration,
                             std::string_view orderId = {}, std::string_view value = {},
                             std::string_view periods = {});

} // namespace planfold

// Registering one checked SIP order with the server.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"
#include "sdk/RxControl.h"

#include <string_view>

namespace planfold {

// Asks the host for an order identifier and whether the order is cautionary (which may ask the user), sends
// `add_sip_orders` and writes the tabbed log's line. False when nothing was sent; the reason has been shown.
// `exchangeShown` is the exchange as the form shows it.
bool SendAddSipOrders(Session& session, RxControl* control, Notices& notices, const sSipOrderData& order,
                      std::string_view exchangeShown);

} // namespace planfold

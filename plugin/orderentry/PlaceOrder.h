// Registering one checked SIP order with the server.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"
#include "sdk/RxControl.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace planfold {

// What an order carries that is a row of a basket.
struct BasketPlace {
    std::int32_t serialNumber;      // comes back with the answer
    std::optional<bool> cautionary; // whether the user confirmed it as such; none leaves the flag out
};

// Asks the host for an order identifier and, unless the order is a basket's, whether it is cautionary (which
// may ask the user), sends `add_sip_orders` and writes the tabbed log's line. False when nothing was sent; the
// reason has been shown. `exchangeShown` is the exchange as the user reads it.
bool SendAddSipOrders(Pass pass, Session& session, RxControl* control, Notices& notices,
                      const sSipOrderData& order, std::string_view exchangeShown,
                      const BasketPlace* place = nullptr);

} // namespace planfold

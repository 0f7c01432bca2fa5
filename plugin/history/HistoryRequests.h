// The two queries of the order history, each for one registration.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

#include <string_view>

namespace planfold {

inline constexpr std::string_view kHistoryOrdersRequest = "qry_eq_sip_orders";
inline constexpr std::string_view kHistoryTradesRequest = "qry_eq_sip_trades";

// False when nothing was sent; the reason has been shown where it has a text.
bool SendHistoryQuery(Pass pass, Session& session, RxControl* control, Notices& notices,
                      std::string_view request, std::string_view registrationNumber);

} // namespace planfold

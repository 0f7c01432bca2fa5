// The requests that change one registration.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderbook/OrderInfo.h"
#include "sdk/RxControl.h"

namespace planfold {

// The request cancel_sip_order, with the record's remarks as the reason. Empty remarks and an empty order
// source become a blank, in the record as well. Sent is logged; the reason of a failure is shown, where it has
// one.
bool SendCancelSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, sOrderinfo& record);

enum class PauseOrResume { pause, resume };
// The requests pause_sip_order and resume_sip_order. Sent is logged; the reason of a failure is shown.
bool SendPauseSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, PauseOrResume which,
                       std::string_view registrationNumber);

} // namespace planfold

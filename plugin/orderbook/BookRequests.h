// What the registration book asks the server for: the queries that fill it, the streams that keep it current,
// and the requests that change one registration.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderbook/OrderInfo.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "sdk/RxControl.h"

namespace planfold {

inline constexpr std::string_view kGetSipOrders = "om_get_sip_orders";
// The registrations of the login id: the request om_get_sip_orders. False when nothing was sent; most reasons
// are shown.
bool SendGetSipOrders(Pass pass, Session& session, RxControl* control, Notices& notices);

// The history of the last two years up to today: the request qry_eq_sip. False when nothing was sent; the
// reason has been shown.
bool SendQuerySips(Pass pass, Session& session, RxControl* control, Notices& notices,
                   const LocalDateTime& today);

// Whether an answer to the second is for this user, by the identity of the login mode.
bool IsOwnHistory(const Session& session, void* message);

// How many days before today the history begins: years counted one by one on a date that moves back.
int LookBackDays(const LocalDateTime& today, int years);

// The plug-in's stream, by account or by identity as the login mode and the host's client overview say.
// Each failure (also a missing control) is shown, and the next account goes on.
void SubscribeBroadcasts(Pass pass, Session& session, RxControl* control, Notices& notices);

// The stream of the login identity.
void SubscribeIdentity(Pass pass, Session& session, RxControl* control, Notices& notices);

// The request cancel_sip_order, with the record's remarks as the reason. Empty remarks and an empty order
// source become a blank, in the record as well. Sent is logged; the reason of a failure is shown, where it has
// one.
bool SendCancelSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, sOrderinfo& record,
                        const std::optional<std::string>& orderId);

enum class PauseOrResume { pause, resume };
constexpr std::string_view RequestNameOf(PauseOrResume which) {
    return which == PauseOrResume::pause ? kPauseSipOrder : kResumeSipOrder;
}
// The requests pause_sip_order and resume_sip_order. Sent is logged; the reason of a failure is shown.
bool SendPauseSipOrder(Pass pass, Session& session, RxControl* control, Notices& notices, PauseOrResume which,
                       std::string_view registrationNumber);

} // namespace planfold

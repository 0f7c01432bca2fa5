// The streams that keep the registration book current.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

namespace planfold {

// The plug-in's stream, by account or by identity as the login mode and the host's client overview say.
// Each failure (also a missing control) is shown, and the next account goes on.
void SubscribeBroadcasts(Pass pass, Session& session, RxControl* control, Notices& notices);

// The stream of the login identity.
void SubscribeIdentity(Pass pass, Session& session, RxControl* control, Notices& notices);

} // namespace planfold

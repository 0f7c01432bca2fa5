// Which frequencies the server lets SIPs use, and how many instalments each must have at least.
#pragma once

#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "sdk/RxControl.h"

#include <string>
#include <vector>

namespace planfold {

// Asks the server. False when nothing was sent; the reason has been shown.
bool SendGetSipOperationMode(Session& session, RxControl* control, Notices& notices);

// What the answer means for a window: frequencies to append to its list, and whether the server's own
// periods hold (then the period is labelled and checked by them).
struct OperationModeAnswer {
    bool understood = false; // false: neither a list nor an error, nothing is to be done
    std::vector<std::string> frequencies;
    bool serverPeriods = false;
};

// Stores the mode and the minimum periods in the session.
OperationModeAnswer ReadOperationMode(Session& session, const Answer& answer);

} // namespace planfold

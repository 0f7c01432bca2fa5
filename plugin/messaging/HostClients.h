// Clients as the host knows them.
#pragma once

#include "plugin/messaging/Session.h"

#include <string_view>

namespace planfold {

// Whether the host can tell that this is none of the user's accounts, and says so.
bool IsUnknownClient(const Session& session, std::string_view client);

} // namespace planfold

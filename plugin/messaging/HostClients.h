// Clients as the host knows them.
#pragma once

#include "plugin/messaging/Session.h"

#include <string>
#include <string_view>

namespace planfold {

// Empty when the host knows none, or cannot be asked.
std::string AskClientName(Pass pass, const Session& session, std::string_view client);

// Whether the host can tell that this is none of the user's accounts, and says so.
bool IsUnknownClient(Pass pass, const Session& session, std::string_view client);

// What is asked before an order is placed for such a client.
std::string UnknownClientQuestion(std::string_view client);

} // namespace planfold

// One registration as a message brings it: an answer to a query, or a streamed update.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderbook/OrderInfo.h"

#include <optional>
#include <string>

namespace planfold {

// The host's name for the message's client; none when the message names no client or the host cannot tell.
std::optional<std::string> AskAccountName(Pass pass, const Session& session, void* message);

// Takes over each field whose tag the message has and leaves the others. `installments` tells which of its two
// fields the period belongs to; `accountName` is what was asked before.
void ReadOrderRow(void* message, bool installments, const std::optional<std::string>& accountName,
                  sOrderinfo& record);

} // namespace planfold

// What the host is asked about scrips and clients.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/HostRecords.h"

#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// By trading symbol; the exchange as code or as shown. None when unknown, or when the host cannot be asked.
std::optional<ScripDetails> AskScripDetails(Pass pass, const Session& session, std::string_view exchange,
                                            std::string_view tradingSymbol);

// All empty when unknown, or when the host cannot be asked.
struct ScripNames {
    std::string tradingSymbol;
    std::string token;
    std::string company;
};
ScripNames AskScripNames(Pass pass, const Session& session, std::string_view exchangeCode,
                         std::string_view series, std::string_view symbol);
std::string AskTradingSymbol(Pass pass, const Session& session, std::string_view exchangeCode,
                             std::string_view series, std::string_view symbol);

// Empty when the host knows none, or cannot be asked.
std::string AskClientName(Pass pass, const Session& session, std::string_view client);

// Whether the host can tell that this is none of the user's accounts, and says so.
bool IsUnknownClient(Pass pass, const Session& session, std::string_view client);

// What is asked before an order is placed for such a client.
std::string UnknownClientQuestion(std::string_view client);

} // namespace planfold

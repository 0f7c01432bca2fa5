// Scrips as the host's master knows them.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/HostRecords.h"

#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// By trading symbol; the exchange as code or as shown. None when unknown, or when the host cannot be asked.
std::optional<ScripDetails> AskScripDetails(const Session& session, std::string_view exchange,
                                            std::string_view tradingSymbol);

// Both empty when unknown, or when the host cannot be asked.
struct ScripNames {
    std::string tradingSymbol;
    std::string token;
};
ScripNames AskScripNames(const Session& session, std::string_view exchangeCode, std::string_view series,
                         std::string_view symbol);
std::string AskTradingSymbol(const Session& session, std::string_view exchangeCode, std::string_view series,
                             std::string_view symbol);

} // namespace planfold

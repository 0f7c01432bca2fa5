// Scrips as the host's master knows them.
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

} // namespace planfold

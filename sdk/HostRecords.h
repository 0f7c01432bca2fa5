// Records that the host hands out. The host owns them; how long each lives stands at the export that
// gives it (HostExports.h). The plug-in only reads.
//
// Example, what the plug-in reads of a scrip and of the host:
//
//     const double tickRupees = static_cast<double>(scrip.tickSize) / scrip.priceMultiplier;
//     const std::string_view symbol = TextOf(scrip.tradingSymbol);
//     const bool tellsInstance = app->size >= sizeof(VeskApp);
#pragma once

#include "sdk/HostWindow.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

struct ScripDetails {
    std::int32_t decimals; // of a price as shown
    std::int32_t reserved;
    double priceMultiplier; // scaled price units in one rupee
    std::int64_t tickSize;  // scaled price units
    char token[32];         // zero-terminated
    char tradingSymbol[64]; // zero-terminated
};
static_assert(sizeof(ScripDetails) == 120 && offsetof(ScripDetails, priceMultiplier) == 8);
static_assert(offsetof(ScripDetails, token) == 24 && offsetof(ScripDetails, tradingSymbol) == 56);

// A text member, also one that the host left without its zero.
template <std::size_t size>
std::string_view TextOf(const char (&member)[size]) {
    const std::string_view all(member, size);
    return all.substr(0, all.find('\0'));
}

// One match of a client search; zero-terminated texts.
struct ClientResult {
    const char* clientId;
    const char* clientName;
};
static_assert(sizeof(ClientResult) == 16);

// The host may replace the contents between calls, so nothing of it is kept.
struct NonTradingDates {
    std::uint32_t count;
    std::uint32_t reserved;
    const std::uint32_t* dates; // ascending, each yyyymmdd; null when count is 0
};
static_assert(sizeof(NonTradingDates) == 16 && offsetof(NonTradingDates, dates) == 8);

struct VeskApp {
    std::uint32_t size; // bytes of the host's record: read no member that lies beyond it
    std::uint32_t reserved;
    HostWindow mainFrame; // null while there is no main frame
    HostInstance instance;
};
static_assert(sizeof(VeskApp) == 24 && offsetof(VeskApp, mainFrame) == 8);

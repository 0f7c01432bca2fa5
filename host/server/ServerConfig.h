// What the trading server is told at its start: the frequencies it offers and the faults it plays.
//
// Thread: any; plain values.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct Frequency {
    std::string name;
    std::optional<int> minimumPeriods{}; // absent: not sent, and no minimum is held
};

// How "get_sip_operation_mode" is answered.
enum class OperationModeShape {
    list,         // the frequencies; "0" when there are none
    listThenZero, // the frequencies and then a "0"
    bare,         // neither frequencies nor an error
};

// What is played on one request name instead of, or on top of, handling it.
struct RequestFault {
    std::optional<std::string> errorCode{}; // refused with this code, and not handled
    std::int64_t delayMs = 0;               // before the request is handled
    bool silent = false;                    // handled, never answered
    bool ignored = false;                   // neither handled nor answered
    bool garbage = false;                   // handled, answered with a message of unknown fields
    bool twice = false;                     // handled, and its last answer sent twice
    bool noSerial = false;                  // an order's answer without its serial number
    int disconnects = 0;       // so many times more handled, then the connection is cut instead of answering
    int disconnectsBefore = 0; // so many times more not handled, nor what came behind it: the connection is cut
};
inline constexpr std::int64_t kMostDelayMs = 86'400'000; // a day
inline constexpr int kMostDisconnects = 1'000'000;

// How the made-up exchange fills orders.
struct FillRates {
    int rejected = 20; // of a hundred
    int partial = 30;
    std::uint64_t seed = 1;
};

struct ServerConfig {
    std::vector<Frequency> frequencies{{"daily", 1}, {"weekly", 1}, {"monthly", 6}, {"yearly", 2}};
    OperationModeShape operationModeShape = OperationModeShape::list;
    // The key is a request's name; "*" stands for every request without a row of its own.
    std::map<std::string, RequestFault, std::less<>> faults;
    FillRates fills;
    // Beside weekends, ascending; not in the file.
    std::vector<std::chrono::year_month_day> nonTrading;

    const RequestFault& FaultFor(std::string_view request) const;
    // Whether the connection is to be cut this time, which is counted in this member.
    bool TakeDisconnect(std::string_view request, int RequestFault::*left);
};

struct ConfigResult {
    std::optional<ServerConfig> config;
    std::string error; // without a config: "file:line: what", or "file: what" of a file that cannot be read
};

// JSON: {"operationMode": {"shape": "list", "frequencies": [{"name": "monthly", "minimum": 6}]},
//        "faults": {"add_sip_orders": {"error": "99", "delayMs": 50, "silent": true, "ignored": true,
//                                       "garbage": true, "twice": true, "noSerial": true,
//                                       "disconnect": 2, "disconnectBefore": 2}},
//        "fills": {"rejected": 20, "partial": 30, "seed": 1}}
// A member left out keeps its default; an unknown one is refused. The path is UTF-8.
ConfigResult LoadServerConfig(const std::string& path);
// `name` stands for the file in error texts.
ConfigResult ParseServerConfig(std::string_view text, std::string_view name);

} // namespace vesk

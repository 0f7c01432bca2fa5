// What the server demands of an order before it registers it, and what modify, cancel, pause and resume do to a
// registration that exists.
//
// Thread: any; pure functions.
#pragma once

#include "host/server/Registration.h"
#include "host/server/ServerConfig.h"
#include "host/server/ServerRefusal.h"
#include "host/server/UserIdentity.h"
#include "host/server/schedule/RestrictedDays.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vesk {

// Nothing when the order may be registered. `request` is a message handle.
std::optional<ServerRefusal> JudgeOrder(void* request, const UserIdentity& user, const ServerConfig& config);

// With a list of frequencies its minimums hold; without one the plain limits do.
std::optional<ServerRefusal> JudgePeriods(std::string_view frequency, std::int64_t periods,
                                          const ServerConfig& config);

// A request for a change and where it comes in.
struct ChangeRequest {
    void* message;
    std::string_view loginId;
    const ServerConfig& config;
    const MarketDays& market;
    std::chrono::year_month_day today;
};

struct ChangeKind {
    std::string_view request;
    std::string_view done; // told to the user
    // Leaves the registration as it is when the change was made before: it is then answered again, and
    // nothing else happens.
    std::optional<ServerRefusal> (*apply)(const ChangeRequest& request, Registration& registration);
};

// Null when the request is none for a change.
const ChangeKind* FindChange(std::string_view request);

} // namespace vesk

// What the server demands of an order before it registers it.
//
// Thread: any; pure functions.
#pragma once

#include "host/server/Refusal.h"
#include "host/server/ServerConfig.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace vesk {

// Nothing when the order may be registered. `request` is a message handle.
std::optional<Refusal> JudgeOrder(void* request, std::string_view loginId, const ServerConfig& config);

// With a list of frequencies its minimums hold; without one the plain limits do.
std::optional<Refusal> JudgePeriods(std::string_view frequency, std::int64_t periods,
                                    const ServerConfig& config);

} // namespace vesk

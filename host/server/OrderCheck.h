// What the server demands of an order before it registers it.
//
// Thread: any; pure functions.
#pragma once

#include "host/server/ServerConfig.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

// Why a request is not served: a code for programs, a text for the user.
struct Refusal {
    std::string_view code;
    std::string text;
};

inline constexpr std::string_view kCodeUnknownRequest = "100";
inline constexpr std::string_view kCodeMissingField = "101";
inline constexpr std::string_view kCodeWrongValue = "102";
inline constexpr std::string_view kCodeFrequency = "103";
inline constexpr std::string_view kCodePeriods = "104";
inline constexpr std::string_view kCodeUser = "105";
inline constexpr std::string_view kCodeJournal = "106";

// Nothing when the order may be registered. `request` is a message handle.
std::optional<Refusal> JudgeOrder(void* request, std::string_view loginId, const ServerConfig& config);

// Digits only, within 64 bits.
std::optional<std::int64_t> WholeNumber(std::string_view text);

} // namespace vesk

// The rights that the host administers for the plug-in.
#pragma once

#include <string_view>

namespace planfold {

inline constexpr std::string_view kRightsRoot = "QV";
// To use the plug-in at all, and the two that unlock more of it.
inline constexpr std::string_view kPluginRight = "QV: Planfold";
inline constexpr std::string_view kCustomRight = "QV: Planfold: Custom";
inline constexpr std::string_view kRestrictedDatesRight = "QV: Planfold: SIP Set Restricted Date";

} // namespace planfold

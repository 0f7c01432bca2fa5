// By which a list and its owner name a record: small and dense, chosen by the owner.
#pragma once

#include <cstdint>

namespace planfold {

using RecordId = std::uint32_t;
inline constexpr RecordId kNoRecord = UINT32_MAX;

} // namespace planfold

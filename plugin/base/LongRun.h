// What lists of many records need: numbers for the records, and runs over them.
#pragma once

#include "base/LongRun.h"

#include <cstdint>

namespace planfold {

// By which a list and its owner name a record: small and dense, chosen by the owner.
using RecordId = std::uint32_t;
inline constexpr RecordId kNoRecord = UINT32_MAX;

using base::LongRun;

} // namespace planfold

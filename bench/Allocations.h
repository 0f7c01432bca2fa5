// Counts what the process takes from the heap, whichever way it is asked.
#pragma once

#include <cstdint>

namespace bench {

std::uint64_t AllocationsSoFar();

} // namespace bench

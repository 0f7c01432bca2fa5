// Counts what the process takes from the heap, whichever way it is asked.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bench {

std::uint64_t AllocationsSoFar();
// What is taken at the moment, with the heap's own share.
std::size_t HeapBytes();

} // namespace bench

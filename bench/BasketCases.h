// What is measured of basket files.
#pragma once

#include "bench/Rounds.h"

namespace bench {

// A basket of so many lines: loaded completely, with one bad line in twenty, only cut, and written again.
// Beside it, when asked for, its peers.
std::vector<Case> BasketCases(std::uint32_t lines, bool peers);

// Bytes of the heap that one row takes.
double BytesOfARow(std::uint32_t lines);

} // namespace bench

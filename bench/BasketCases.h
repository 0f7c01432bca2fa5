// What is measured of basket files.
#pragma once

#include "bench/Rounds.h"

namespace bench {

// A basket of so many lines: loaded completely, with one bad line in twenty, only cut, and written again.
// Beside it, when asked for, its peers.
std::vector<Case> BasketCases(std::uint32_t lines, bool peers);

// The same basket behind its window, where rows have serial numbers, totals and marks: loaded, written, placed
// with a host that does nothing, and answered.
std::vector<Case> BasketRowCases(std::uint32_t lines);

// Bytes of the heap that one row takes, by itself and behind the window.
double BytesOfARow(std::uint32_t lines);
double BytesOfAStoredRow(std::uint32_t lines);

} // namespace bench

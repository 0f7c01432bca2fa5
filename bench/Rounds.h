// Runs cases in turns and keeps the best turn of each.
//
// Machines are shared, so a turn is short, every case has one in each round, and only the best counts: what
// disturbs one case for a while disturbs its neighbours as well.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Case {
    std::string name;
    std::function<void()> run;          // one unit,
    std::uint64_t units = 1;            // or more: then a turn is one run
    std::function<void()> prepare = {}; // before each turn, not measured
};

struct Result {
    std::string name;
    double nanoseconds = 0; // a unit, in the best turn
    double allocations = 0; // a unit
};

std::vector<Result> RunInTurns(const std::vector<Case>& cases, int rounds);

// Tells the compiler that the bytes behind the pointer are used.
inline void Keep(const void* bytes) {
    asm volatile("" : : "r"(bytes) : "memory");
}

} // namespace bench

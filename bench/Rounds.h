// Runs cases in turns and keeps the best turn of each; the programs' arguments, and the tables that they print.
//
// Machines are shared, so a turn is short, every case has one in each round, and only the best counts: what
// disturbs one case for a while disturbs its neighbours as well.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
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

// Ends the program when a case did not do its work.
void Require(bool worked, const char* what);

// What the process has taken from the heap, whichever way it asked.
std::uint64_t AllocationsSoFar();
// What is taken at the moment, with the heap's own share.
std::size_t HeapBytes();

// "Hold" is the ratio that must be kept, "aim" the one to reach.
struct Ratio {
    std::string_view over;
    std::string_view under;
    double hold; // 0: told only
    double aim;
};

// ROUNDS, when that is the argument.
int RoundsAsked(int count, char** arguments);
// Runs one case as often as "--repeat CASE N" says; false when that is not what the arguments are.
bool Repeated(std::span<const Case> cases, int count, char** arguments);

const Result& Of(std::span<const Result> results, std::string_view name);
void Print(std::span<const Result> results);
void Print(std::span<const Ratio> ratios, std::span<const Result> results);

} // namespace bench

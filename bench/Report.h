// What the programs of the benchmarks share: their arguments, and the tables they print.
#pragma once

#include "bench/Rounds.h"

#include <span>
#include <string_view>

namespace bench {

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

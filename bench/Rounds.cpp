#include "bench/Rounds.h"

#include "bench/Allocations.h"

#include <algorithm>
#include <chrono>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kTurnNanoseconds = 5e6;
constexpr std::uint64_t kWarmUp = 1000; // more than any pool of handles holds

struct Taken {
    double nanoseconds; // a unit
    double allocations;
};

Taken Turn(const Case& one, std::uint64_t runs) {
    if (one.prepare) one.prepare();
    const auto units = static_cast<double>(runs * one.units);
    const std::uint64_t before = AllocationsSoFar();
    const auto start = Clock::now();
    for (std::uint64_t i = 0; i < runs; ++i)
        one.run();
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    return {taken.count() / units, static_cast<double>(AllocationsSoFar() - before) / units};
}

} // namespace

std::vector<Result> RunInTurns(const std::vector<Case>& cases, int rounds) {
    std::vector<Result> results;
    std::vector<std::uint64_t> runs;
    for (const Case& one : cases) {
        const bool isLong = one.units > 1;
        const Taken first = Turn(one, isLong ? 1 : kWarmUp);
        const auto fitting = static_cast<std::uint64_t>(kTurnNanoseconds / first.nanoseconds);
        runs.push_back(isLong ? 1 : std::max(kWarmUp, fitting));
        const Taken second = Turn(one, isLong ? 1 : kWarmUp);
        results.push_back({one.name, std::min(first.nanoseconds, second.nanoseconds), second.allocations});
    }
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i)
            results[i].nanoseconds = std::min(results[i].nanoseconds, Turn(cases[i], runs[i]).nanoseconds);
    return results;
}

} // namespace bench

#include "bench/Rounds.h"

#include "bench/Allocations.h"

#include <algorithm>
#include <chrono>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kTurnNanoseconds = 5e6;
constexpr std::uint64_t kWarmUp = 1000; // more than any pool of handles holds

double Turn(const Case& one, std::uint64_t units) {
    const auto start = Clock::now();
    for (std::uint64_t i = 0; i < units; ++i)
        one.run();
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    return taken.count() / static_cast<double>(units);
}

} // namespace

std::vector<Result> RunInTurns(const std::vector<Case>& cases, int rounds) {
    std::vector<Result> results;
    std::vector<std::uint64_t> units;
    for (const Case& one : cases) {
        const double first = Turn(one, kWarmUp);
        units.push_back(std::max(kWarmUp, static_cast<std::uint64_t>(kTurnNanoseconds / first)));
        const std::uint64_t before = AllocationsSoFar();
        Turn(one, kWarmUp);
        const auto taken = static_cast<double>(AllocationsSoFar() - before);
        results.push_back({one.name, first, taken / static_cast<double>(kWarmUp)});
    }
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i)
            results[i].nanoseconds = std::min(results[i].nanoseconds, Turn(cases[i], units[i]));
    return results;
}

} // namespace bench

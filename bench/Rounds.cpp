#include "bench/Rounds.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kTurnNanoseconds = 5e6;
constexpr std::uint64_t kWarmUp = 1000; // more than any pool of handles holds

constexpr int kDefaultRounds = 25;
constexpr int kLeastRounds = 9;

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

const char* Verdict(const Ratio& ratio, double is) {
    if (is <= ratio.aim) return "reached";
    return is <= ratio.hold ? "holds" : "missed";
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

void Require(bool worked, const char* what) {
    if (worked) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(2);
}

int RoundsAsked(int count, char** arguments) {
    return count > 1 ? std::max(kLeastRounds, std::atoi(arguments[1])) : kDefaultRounds;
}

bool Repeated(std::span<const Case> cases, int count, char** arguments) {
    if (count != 4 || std::string_view(arguments[1]) != "--repeat") return false;
    const auto one = std::ranges::find(cases, std::string_view(arguments[2]), &Case::name);
    Require(one != cases.end(), arguments[2]);
    for (int left = std::atoi(arguments[3]); left > 0; --left) {
        if (one->prepare) one->prepare();
        one->run();
    }
    return true;
}

const Result& Of(std::span<const Result> results, std::string_view name) {
    const auto result = std::ranges::find(results, name, &Result::name);
    Require(result != results.end(), "finding a ratio's case");
    return *result;
}

void Print(std::span<const Result> results) {
    std::printf("%-26s %10s %14s\n", "case", "ns", "allocations");
    for (const Result& result : results)
        std::printf("%-26s %10.1f %14.2f\n", result.name.c_str(), result.nanoseconds, result.allocations);
}

void Print(std::span<const Ratio> ratios, std::span<const Result> results) {
    std::printf("\n%-52s %8s %8s %8s\n", "ratio", "is", "hold", "aim");
    for (const Ratio& ratio : ratios) {
        const double is = Of(results, ratio.over).nanoseconds / Of(results, ratio.under).nanoseconds;
        std::printf("%-22s over %-24s %8.3f", ratio.over.data(), ratio.under.data(), is);
        if (ratio.hold > 0) std::printf(" %8.2f %8.2f  %s", ratio.hold, ratio.aim, Verdict(ratio, is));
        std::printf("\n");
    }
}

} // namespace bench

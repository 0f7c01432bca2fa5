// planfold_bench [ROUNDS]          measures all cases in turns and prints the ratios
// planfold_bench --repeat CASE N   runs one case N times and prints nothing, to be counted by valgrind
#include "bench/Cases.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kDefaultRounds = 25;
constexpr int kLeastRounds = 9;

// "Hold" is the ratio that must be kept, "aim" the one to reach.
struct Ratio {
    std::string_view over;
    std::string_view under;
    double hold; // 0: told only
    double aim;
};
constexpr Ratio kRatios[] = {
    {"encode", "encode-quickfix", 0.05, 0.03},
    {"encode", "encode-quickfix-new", 0, 0},
    {"encode", "encode-snprintf", 0, 0},
    {"encode", "floor", 0, 0},
    {"decode", "decode-quickfix", 0.12, 0.07},
    {"decode", "floor", 0, 0},
    {"submit", "floor", 0, 0},
    {"submit", "encode", 0, 0},
};

const bench::Result& Of(const std::vector<bench::Result>& results, std::string_view name) {
    return *std::ranges::find(results, name, &bench::Result::name);
}

void Print(const std::vector<bench::Result>& results) {
    std::printf("%-20s %10s %14s\n", "case", "ns", "allocations");
    for (const bench::Result& result : results)
        std::printf("%-20s %10.1f %14.2f\n", result.name.data(), result.nanoseconds, result.allocations);
    std::printf("\n%-42s %8s %8s %8s\n", "ratio", "is", "hold", "aim");
    for (const Ratio& ratio : kRatios) {
        const double is = Of(results, ratio.over).nanoseconds / Of(results, ratio.under).nanoseconds;
        std::printf("%-16s over %-20s %8.3f", ratio.over.data(), ratio.under.data(), is);
        if (ratio.hold > 0)
            std::printf(" %8.2f %8.2f  %s", ratio.hold, ratio.aim,
                        is <= ratio.aim    ? "reached"
                        : is <= ratio.hold ? "holds"
                                           : "missed");
        std::printf("\n");
    }
}

} // namespace

void bench::Require(bool worked, const char* what) {
    if (worked) return;
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(2);
}

int main(int count, char** arguments) {
    std::vector<bench::Case> cases = bench::MessageCases();
    cases.push_back(bench::SubmitCase());
    if (count == 4 && std::strcmp(arguments[1], "--repeat") == 0) {
        const auto one = std::ranges::find(cases, std::string_view(arguments[2]), &bench::Case::name);
        bench::Require(one != cases.end(), arguments[2]);
        for (int left = std::atoi(arguments[3]); left > 0; --left)
            one->run();
        return 0;
    }
    const int rounds = count > 1 ? std::max(kLeastRounds, std::atoi(arguments[1])) : kDefaultRounds;
    const auto results = bench::RunInTurns(cases, rounds);
    Print(results);
    bench::Require(Of(results, "encode").allocations == 0 && Of(results, "decode").allocations == 0,
                   "a message without the heap");
}

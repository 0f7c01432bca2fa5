// planfold_basket_bench [ROUNDS]          measures baskets and prints the ratios
// planfold_basket_bench --repeat CASE N   runs one case of 1,000 lines N times and prints nothing, to be
// counted
#include "bench/BasketCases.h"
#include "bench/Report.h"

#include <cstdio>

namespace {

constexpr std::uint32_t kSmall = 1'000, kMiddle = 100'000, kLarge = 1'000'000;
constexpr int kLargeRounds = 9; // a round takes seconds

constexpr bench::Ratio kRatios[] = {
    {"load-1000000", "cut-libcsv-1000000", 1.0, 0.35},
    {"load-1000000", "floor-1000000", 30, 10},
    {"load-1000000", "load-plain-1000000", 0.15, 0.05},
    {"load-bad-1000000", "load-1000000", 1.5, 1.2},
    {"load-1000000", "load-1000", 0, 0},
    {"cut-1000000", "cut-libcsv-1000000", 0, 0},
    {"export-1000000", "floor-1000000", 0, 0},
};

} // namespace

int main(int count, char** arguments) {
    if (bench::Repeated(bench::BasketCases(kSmall, false), count, arguments)) return 0;
    const double bytes = bench::BytesOfARow(kLarge);
    std::vector<bench::Result> results;
    for (const std::uint32_t lines : {kSmall, kMiddle, kLarge}) {
        const int rounds = lines == kLarge ? kLargeRounds : bench::RoundsAsked(count, arguments);
        for (const bench::Result& each : bench::RunInTurns(bench::BasketCases(lines, lines == kLarge), rounds))
            results.push_back(each);
    }
    bench::Print(results);
    bench::Print(kRatios, results);
    std::printf("\n%-26s %10.1f\n", "bytes a row", bytes);
}

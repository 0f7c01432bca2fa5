// planfold_basket_bench [ROUNDS]          measures baskets and prints the ratios
// planfold_basket_bench --repeat CASE N   runs one case of 1,000 lines N times, to be counted by valgrind
#include "bench/Cases.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr std::uint32_t kSmall = 1'000, kPlaced = 10'000, kMiddle = 100'000, kLarge = 1'000'000;
constexpr int kLargeRounds = 9; // a round takes seconds

constexpr bench::Ratio kRatios[] = {
    {"load-1000000", "cut-libcsv-1000000", 1.0, 0.35},
    {"load-1000000", "floor-1000000", 30, 10},
    {"load-1000000", "load-plain-1000000", 0.15, 0.05},
    {"load-bad-1000000", "load-1000000", 1.5, 1.2},
    {"load-1000000", "load-1000", 0, 0},
    {"cut-1000000", "cut-libcsv-1000000", 0, 0},
    {"export-1000000", "floor-1000000", 0, 0},
    {"load-rows-1000000", "load-1000000", 0, 0},
    {"load-rows-1000000", "cut-libcsv-1000000", 0, 0},
    {"load-rows-1000000", "load-plain-1000000", 0, 0},
    {"load-rows-1000000", "load-rows-1000", 0, 0},
    {"import-rows-1000000", "load-rows-1000000", 3, 3},
    {"export-rows-100000", "export-100000", 0, 0},
    {"export-rows-100000", "export-rows-1000", 0, 0},
    {"place-10000", "submit", 0, 0},
    {"place-10000", "place-1000", 0, 0},
    {"place-100000", "place-10000", 0, 0},
    {"place-recorded-10000", "place-10000", 1.5, 1.2},
    {"answer-100000", "answer-1000", 0, 0},
};

// With peers beside the largest.
std::vector<bench::Case> CasesOf(std::uint32_t lines) {
    auto cases = bench::BasketCases(lines, lines == kLarge);
    std::ranges::move(bench::BasketRowCases(lines), std::back_inserter(cases));
    if (lines == kPlaced) cases.push_back(bench::SubmitCase());
    return cases;
}

} // namespace

int main(int count, char** arguments) {
    if (bench::Repeated(CasesOf(kSmall), count, arguments)) return 0;
    const double bytes = bench::BytesOfARow(kLarge), stored = bench::BytesOfAStoredRow(kLarge);
    std::vector<bench::Result> results;
    for (const std::uint32_t lines : {kSmall, kPlaced, kMiddle, kLarge}) {
        const int rounds = lines == kLarge ? kLargeRounds : bench::RoundsAsked(count, arguments);
        std::ranges::move(bench::RunInTurns(CasesOf(lines), rounds), std::back_inserter(results));
    }
    bench::Print(results);
    bench::Print(kRatios, results);
    std::printf("\n%-26s %10.1f\n%-26s %10.1f\n", "bytes a row", bytes, "bytes a row, stored", stored);
}

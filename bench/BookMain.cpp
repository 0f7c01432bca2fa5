// planfold_book_bench [ROUNDS]          measures the registration book and prints the ratios
// planfold_book_bench --repeat CASE N   runs one case of 1,000 rows N times, to be counted by valgrind
#include "bench/Cases.h"

#include <cstdio>

namespace {

constexpr std::uint32_t kSmall = 1'000, kLarge = 1'000'000;
constexpr std::uint32_t kRecords[] = {kSmall, 100'000, kLarge};
constexpr std::uint32_t kRows[] = {kSmall, 10'000, 100'000, kLarge};
constexpr int kFillRounds = 9; // a round takes seconds

constexpr bench::Ratio kRatios[] = {
    {"find-1000000", "find-absl-1000000", 1.1, 0.7},
    {"find-1000000", "find-boost-1000000", 1.1, 0.7},
    {"find-1000000", "find-1000", 0, 0},
    {"update-1000000", "update-absl-1000000", 1.0, 0.55},
    {"update-1000000", "update-sqlite-1000000", 0.1, 0.05},
    {"update-1000000", "update-1000", 0, 0},
    {"bytes-record", "bytes-record-absl", 1.0, 0.37},
    {"stream-1000000", "stream-1000", 0, 0},
    {"stream-filtered-1000000", "stream-filtered-1000", 0, 0},
    {"stream-sorted-1000000", "stream-sorted-1000", 0, 0},
    {"new-1000000", "new-1000", 0, 0},
    {"fill-1000000", "fill-absl-1000000", 0, 0},
};

void Append(auto& to, const auto& what) {
    to.insert(to.end(), what.begin(), what.end());
}

// Group by group, so that only one is in memory at a time.
std::vector<bench::Result> Measure(int rounds) {
    std::vector<bench::Case> cases;
    for (const std::uint32_t records : kRecords)
        Append(cases, bench::RecordCases(records, records == kLarge));
    auto results = bench::RunInTurns(cases, rounds);
    cases.clear();
    for (const std::uint32_t rows : kRows)
        Append(cases, bench::StreamCases(rows));
    Append(results, bench::RunInTurns(cases, rounds));
    cases = bench::FillCases(kLarge);
    Append(results, bench::RunInTurns(cases, kFillRounds));
    return results;
}

} // namespace

int main(int count, char** arguments) {
    if (count == 4) {
        auto cases = bench::RecordCases(kSmall, false);
        Append(cases, bench::StreamCases(kSmall));
        if (bench::Repeated(cases, count, arguments)) return 0;
    }
    auto bytes = bench::RecordBytes(kLarge);
    Append(bytes, bench::RowBytes(kLarge));
    auto results = Measure(bench::RoundsAsked(count, arguments));
    bench::Print(results);
    std::printf("\n%-26s %10s\n", "memory", "bytes");
    for (const bench::Result& each : bytes)
        std::printf("%-26s %10.1f\n", each.name.c_str(), each.nanoseconds);
    Append(results, bytes);
    bench::Print(kRatios, results);
}

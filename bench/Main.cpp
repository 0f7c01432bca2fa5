// planfold_bench [ROUNDS]          measures all cases in turns and prints the ratios
// planfold_bench --repeat CASE N   runs one case N times and prints nothing, to be counted by valgrind
#include "bench/Cases.h"

namespace {

constexpr bench::Ratio kRatios[] = {
    {"encode", "encode-quickfix", 0.05, 0.03},
    {"encode", "encode-quickfix-new", 0, 0},
    {"encode", "encode-snprintf", 0, 0},
    {"encode", "floor", 0, 0},
    {"decode", "decode-quickfix", 0.12, 0.07},
    {"decode", "floor", 0, 0},
    {"submit", "floor", 0, 0},
    {"submit", "encode", 0, 0},
};

} // namespace

int main(int count, char** arguments) {
    std::vector<bench::Case> cases = bench::MessageCases();
    cases.push_back(bench::SubmitCase());
    if (bench::Repeated(cases, count, arguments)) return 0;
    const auto results = bench::RunInTurns(cases, bench::RoundsAsked(count, arguments));
    bench::Print(results);
    bench::Print(kRatios, results);
    bench::Require(bench::Of(results, "encode").allocations == 0
                       && bench::Of(results, "decode").allocations == 0,
                   "a message without the heap");
}

// The list without its window, beside a plain model and by tables.
#include "tests/support/ListPair.h"

#include <gtest/gtest.h>

#include <random>

using namespace korvex;

namespace {

// Few records meet every case of selection and filters; many fill blocks, keys and slots that are closed up.
TEST(ListModel, DoesWhatAPlainListDoes) {
    struct Run {
        std::uint32_t records;
        bool filled;
        int steps;
    };
    for (const Run& run : {Run{6, false, 20000}, Run{40, false, 3000}, Run{1500, true, 150}}) {
        for (unsigned seed = 1; seed <= 2; ++seed) {
            std::mt19937 random(seed);
            const auto next = [&] { return static_cast<unsigned>(random() % 256); };
            test::ListPair pair(run.records);
            if (run.filled) pair.Fill(next);
            for (int step = 0; step < run.steps; ++step) {
                pair.Step(next);
                ASSERT_EQ(pair.Difference(), "")
                    << run.records << " records, seed " << seed << ", step " << step;
            }
        }
    }
}

} // namespace

// Rows that go out in portions, and what happens to them meanwhile.
#include "host/korvexcontrols/model/ListOutput.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace korvex;

namespace {

// Each piece of cells takes long enough for a few to be more than a portion.
struct SlowSource final : CellSource {
    void Cells(std::span<const std::uint32_t> records, std::int32_t, std::string_view* texts) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(90));
        std::fill_n(texts, records.size(), std::string_view("x"));
    }
};

struct ListOutputTest : testing::Test {
    static constexpr std::uint32_t kRows = 8 * kBatch;

    ListOutputTest() {
        std::vector<std::uint32_t> records;
        for (std::uint32_t record = 0; record < kRows; ++record) {
            static_cast<void>(model.InsertFront(record));
            records.push_back(record);
        }
        output.Start("Copying", {Notation::tabbed, {{0, "H", ValueType::text}}, records},
                     [this](const std::string& text) { ready.push_back(text); });
    }
    static std::string Text(std::uint32_t rows) {
        std::string text = "H\r\n";
        for (std::uint32_t row = 0; row < rows; ++row)
            text += "x\r\n";
        return text;
    }

    SlowSource source;
    ListModel model{source};
    ListOutput output{model, source};
    std::vector<std::string> ready;
};

TEST_F(ListOutputTest, GoesOnInPortionsAndLeavesOutRowsThatHaveGone) {
    ASSERT_TRUE(output.IsUnderWay());
    EXPECT_EQ(output.Progress(), "Copying: " + std::to_string(output.Done()) + " of 8192 rows");
    model.Remove(0); // it is written
    model.Remove(kRows - 1);
    model.Remove(kRows - 2);
    for (int portion = 0; portion < 8 && output.IsUnderWay(); ++portion) {
        EXPECT_EQ(ready.size(), 0u);
        output.Continue();
    }
    EXPECT_FALSE(output.IsUnderWay());
    EXPECT_EQ(ready, std::vector{Text(kRows - 2)});
    output.Continue();
    EXPECT_EQ(ready.size(), 1u);
}

TEST_F(ListOutputTest, IsWholeBeforeItsRowsGo) {
    output.Finish();
    model.RemoveAll();
    EXPECT_EQ(ready, std::vector{Text(kRows)});
}

TEST_F(ListOutputTest, IsNothingWhenStopped) {
    output.Stop();
    output.Finish();
    EXPECT_FALSE(output.IsUnderWay());
    EXPECT_EQ(ready.size(), 0u);
}

} // namespace

// The bar between two panes: its place in rooms of every size.
#include "host/korvexcontrols/model/SplitPosition.h"

#include <gtest/gtest.h>

using korvex::ReadSplit;
using korvex::SplitPosition;

namespace {

TEST(SplitPosition, KeepsItsShareAndTheLeastLengths) {
    struct Row {
        int share, room, first;
    };
    constexpr SplitPosition::Least least{100, 50};
    const Row rows[] = {{6000, 1000, 600}, {6000, 333, 200}, {0, 1000, 100}, {10000, 1000, 950},
                        {6000, 151, 100},  {6000, 150, 100}, {6000, 90, 60}, {6000, 0, 0},
                        {6000, -5, 0},     {-3, 1000, 100}};
    for (const Row& row : rows)
        EXPECT_EQ(SplitPosition(row.share).First(row.room, least), row.first)
            << row.share << " of " << row.room;
    for (int room = 151; room < 3000; room += 97)
        for (int first = 100; first <= room - 50; ++first) {
            SplitPosition position(0);
            position.MoveTo(first, room, least);
            ASSERT_EQ(position.First(room, least), first) << "stands where it was put, in " << room;
        }
    SplitPosition narrow(6000);
    narrow.MoveTo(10, 120, least);
    EXPECT_EQ(narrow.Share(), 6000) << "a room too small for both moves nothing";
}

TEST(SplitPosition, IsReadFromAWholeShareOnly) {
    for (const char* text : {"", "x", "-1", "10001", "12 ", "5000,", "99999999999"})
        EXPECT_FALSE(ReadSplit(text)) << text;
    EXPECT_EQ(ReadSplit("10000")->Share() + ReadSplit("0")->Share(), 10000);
}

} // namespace

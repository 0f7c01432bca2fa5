// The bar between two panes: its place in rooms of every size.
#include "host/korvexcontrols/model/KeptLayout.h"

#include <gtest/gtest.h>

using korvex::ReadSplit;
using korvex::SplitPosition;

TEST(SplitPosition, KeepsItsShareAndTheLeastLengths) {
    constexpr SplitPosition::Least least{100, 50};
    struct Row {
        int share, room, first;
    };
    for (const Row& row :
         {Row{6000, 333, 200}, {0, 1000, 100}, {10000, 1000, 950}, {6000, 90, 60}, {6000, -5, 0}})
        EXPECT_EQ(SplitPosition(row.share).First(row.room, least), row.first)
            << row.share << " of " << row.room;
    for (int room = 120; room < 3000; room += 97)
        for (int first = 100; first <= room - 50; ++first) {
            SplitPosition position(0);
            position.MoveTo(first, room, least);
            ASSERT_EQ(position.First(room, least), first) << "stands where it was put, in " << room;
        }
    for (const char* text : {"", "x", "-1", "10001", "12 ", "99999999999"})
        EXPECT_FALSE(ReadSplit(text)) << text;
}

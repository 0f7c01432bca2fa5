#include "sdk/HeapStringManager.h"
#include "tests/support/QuarantineStringManager.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

// A buffer that no string object frees.
StringHeader* BufferOf(std::string_view text, StringManager& manager) {
    PassedString passed(text, manager);
    return reinterpret_cast<StringHeader*>(const_cast<char*>(passed.Hand()->c_str())) - 1;
}

TEST(HeapStringManager, RefusesSizesThatCannotBe) {
    HeapStringManager manager;
    struct {
        int chars, charSize;
    } const rows[] = {{-1, 1}, {INT_MIN, 1}, {1, 0}, {1, -1}, {1, 5}};
    for (const auto& row : rows)
        EXPECT_EQ(manager.Allocate(row.chars, row.charSize), nullptr) << row.chars << ", " << row.charSize;
    EXPECT_EQ(manager.LiveBuffers(), 0);
}

TEST(HeapStringManager, ReallocationKeepsWhatFits) {
    HeapStringManager manager;
    struct {
        int chars;
        const char* kept;
    } const rows[] = {{20, "ARBORTEX"}, {8, "ARBORTEX"}, {3, "ARB"}, {0, ""}};
    for (const auto& row : rows) {
        StringHeader* header = BufferOf("ARBORTEX", manager);
        header = manager.Reallocate(header, row.chars, 1);
        ASSERT_NE(header, nullptr);
        EXPECT_STREQ(header->Text(), row.kept);
        EXPECT_EQ(header->length, static_cast<int>(std::strlen(row.kept)));
        EXPECT_EQ(header->allocated, row.chars);
        manager.Free(header);
    }
    StringHeader* survivor = manager.Allocate(3, 1);
    EXPECT_EQ(manager.Reallocate(survivor, -1, 1), nullptr);
    EXPECT_EQ(manager.LiveBuffers(), 1) << "the old buffer stays valid after a failure";
    manager.Free(survivor);
    EXPECT_EQ(manager.LiveBuffers(), 0);
}

TEST(HeapStringManager, EmptyStringIsNeverFreed) {
    HeapStringManager manager;
    for (int i = 0; i < 3; ++i) {
        StringHeader* nil = manager.GetNilString();
        EXPECT_GT(nil->references, 1);
        nil->references = 1;
        manager.Free(nil);
        nil->references = 2;
    }
    manager.Free(nullptr);
    EXPECT_EQ(manager.LiveBuffers(), 0);
    EXPECT_STREQ(CString(manager).c_str(), "");
}

} // namespace

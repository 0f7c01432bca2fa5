#include "sdk/CStringArray.h"
#include "tests/support/QuarantineStringManager.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The array as another module lays it out.
struct ForeignArray {
    const void* vtable;
    CString* data;
    std::int64_t size;
    std::int64_t capacity;
    std::int64_t growBy;
};
static_assert(sizeof(ForeignArray) == sizeof(CStringArray));

ForeignArray& FieldsOf(CStringArray& array) {
    return reinterpret_cast<ForeignArray&>(array);
}

std::string Dump(const CStringArray& array) {
    std::string text;
    for (const CString& element : array.Elements())
        text.append(element.View()).append(";");
    return text;
}

struct GrowRow {
    const char* name;
    std::int64_t growBy, capacity, expectedCapacity; // capacity: of the foreign storage, filled to the brim
};

constexpr GrowRow kGrows[] = {
    {"one at a time", 1, 0, 1}, {"ten at a time", 10, 2, 12}, {"full storage", 3, 1, 4},
    {"own choice", 0, 2, 7},    {"nonsense", -1, 2, 7},
};

TEST(CStringArray, GrowsForeignStorageByItsOwnStep) {
    for (const GrowRow& row : kGrows) {
        SCOPED_TRACE(row.name);
        QuarantineStringManager manager;
        {
            CStringArray array;
            ForeignArray& fields = FieldsOf(array);
            fields.growBy = row.growBy;
            std::string expected;
            if (row.capacity) {
                fields.data = static_cast<CString*>(
                    sdk::ProcessHeapAllocate(static_cast<std::size_t>(row.capacity) * sizeof(CString)));
                for (; fields.size < row.capacity; ++fields.size) {
                    new (fields.data + fields.size) CString("old", manager);
                    expected += "old;";
                }
                fields.capacity = row.capacity;
            }
            array.Append("new", manager);
            EXPECT_EQ(Dump(array), expected + "new;");
            EXPECT_EQ(fields.capacity, row.expectedCapacity);
        }
        EXPECT_EQ(manager.Live(), 0);
        EXPECT_EQ(manager.Faults(), 0);
    }
}

TEST(CStringArray, StaysAsItIsWithoutMemoryForTheText) {
    QuarantineStringManager manager;
    CStringArray array;
    array.Append("first", manager);
    manager.failing = true;
    EXPECT_THROW(array.Append("second", manager), std::bad_alloc);
    EXPECT_EQ(Dump(array), "first;");
    EXPECT_EQ(manager.Live(), 1);
}

} // namespace

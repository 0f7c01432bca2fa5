#include "sdk/CString.h"
#include "tests/support/QuarantineStringManager.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

StringHeader* HeaderOf(const CString& string) {
    return reinterpret_cast<StringHeader*>(const_cast<char*>(string.c_str())) - 1;
}

struct WriteRow {
    const char* name;
    std::string_view before; // empty: a string that was never written
    bool shared;
    std::string_view after;
    int allocations;
    int reallocations;
};

using namespace std::string_view_literals;
constexpr WriteRow kWrites[] = {
    // name                     before        shared  after           allocated  reallocated
    {"never written", "", false, "ARBORTEX", 1, 0},
    {"fits in place", "ARBORTEX", false, "BYTEFIN", 0, 0},
    {"same length", "BYT", false, "FIN", 0, 0},
    {"one more grows", "BYT", false, "CARS", 0, 1},
    {"cleared in place", "BYTEFIN", false, "", 0, 0},
    {"shared forks", "BYTEFIN", true, "ARBORTEX", 1, 0},
    {"shared forks to shorter", "ARBORTEX", true, "A", 1, 0},
    {"shared forks to empty", "ARBORTEX", true, "", 1, 0},
    {"zero inside", "BYTEFIN", false, "A\0B"sv, 0, 0},
};

TEST(CString, WritesTouchOnlyTheirOwnBuffer) {
    for (const WriteRow& row : kWrites) {
        SCOPED_TRACE(row.name);
        QuarantineStringManager manager;
        {
            auto written = row.before.empty() ? CString(manager) : CString(row.before, manager);
            std::optional<CString> sharer;
            if (row.shared) sharer.emplace(written);
            manager.allocations = manager.reallocations = 0;

            written = row.after;

            EXPECT_EQ(written.View(), row.after);
            EXPECT_EQ(written.c_str()[row.after.size()], '\0');
            EXPECT_EQ(manager.allocations, row.allocations);
            EXPECT_EQ(manager.reallocations, row.reallocations);
            if (sharer) {
                EXPECT_EQ(sharer->View(), row.before);
                EXPECT_EQ(HeaderOf(*sharer)->references, 1);
            }
        }
        EXPECT_EQ(manager.Live(), 0);
        EXPECT_EQ(manager.Faults(), 0);
    }
}

TEST(CString, WrittenByAnotherModuleStaysWithItsManager) {
    QuarantineStringManager owner, writer;
    {
        CString out(owner);
        out = "a text that another module writes";
        out = "and writes again, longer than it was before, so that the buffer must grow";
        EXPECT_EQ(&out.Manager(), &owner);

        // Taking over a string made elsewhere keeps that buffer with its own maker.
        CString taken("mine", owner);
        taken = CString("theirs", writer);
        EXPECT_EQ(&taken.Manager(), &writer);
        taken = "theirs still, though grown here";
        EXPECT_EQ(&taken.Manager(), &writer);
    }
    EXPECT_EQ(owner.Live(), 0);
    EXPECT_EQ(writer.Live(), 0);
    EXPECT_EQ(owner.Faults() + writer.Faults(), 0);
}

TEST(CString, ForkIsMadeByTheManagersClone) {
    QuarantineStringManager original, clone;
    original.cloneTo = &clone;
    {
        const CString first("shared", original);
        EXPECT_EQ(&first.Manager(), &clone) << "the first write forks the empty string";
        CString stays("stays", clone);
        const CString sharer(stays);
        stays = "forked";
        EXPECT_EQ(&stays.Manager(), &clone);
    }
    EXPECT_EQ(clone.Live() + original.Live(), 0);
    EXPECT_EQ(clone.Faults() + original.Faults(), 0);
}

TEST(CString, KeepsItsTextWhenThereIsNoMemory) {
    QuarantineStringManager manager;
    {
        CString alone("old", manager), shared("kept", manager), never(manager), locked("locked", manager);
        const CString sharer(shared);
        HeaderOf(locked)->references = -1;
        manager.failing = true;

        EXPECT_THROW(alone = "longer than the old one", std::bad_alloc);
        EXPECT_THROW(shared = "x", std::bad_alloc);
        EXPECT_THROW(never = "x", std::bad_alloc);
        EXPECT_THROW(alone = locked, std::bad_alloc);
        EXPECT_THROW(CString("new", manager), std::bad_alloc);

        EXPECT_EQ(alone.View(), "old");
        EXPECT_EQ(shared.View(), "kept");
        EXPECT_EQ(shared.c_str(), sharer.c_str());
        EXPECT_TRUE(never.IsEmpty());
        HeaderOf(locked)->references = 1;
    }
    EXPECT_EQ(manager.Live(), 0);
    EXPECT_EQ(manager.Faults(), 0);
}

} // namespace

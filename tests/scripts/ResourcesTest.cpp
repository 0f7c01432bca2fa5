// Something of each kind that is made, and not let go, is seen in the counts.
#include "host/terminal/script/window/Resources.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace vesk {
namespace {

HWND MakeWindow() {
    return CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
}

constexpr struct {
    const char* kind;
    std::size_t Resources::*count;
    void* (*make)();
    void (*drop)(void*);
} kKinds[] = {
    {"brush", &Resources::gdi, [] { return static_cast<void*>(CreateSolidBrush(RGB(1, 2, 3))); },
     [](void* it) { DeleteObject(it); }},
    {"hidden window", &Resources::windows, [] { return static_cast<void*>(MakeWindow()); },
     [](void* it) { DestroyWindow(static_cast<HWND>(it)); }},
    {"menu", &Resources::user, [] { return static_cast<void*>(CreatePopupMenu()); },
     [](void* it) { DestroyMenu(static_cast<HMENU>(it)); }},
    {"event", &Resources::handles,
     [] { return static_cast<void*>(CreateEventA(nullptr, FALSE, FALSE, nullptr)); },
     [](void* it) { CloseHandle(it); }},
    {"memory block", &Resources::heapBlocks, [] { return std::malloc(5000); }, [](void* it) { std::free(it); }},
    {"large memory", &Resources::heapKiB, [] { return std::malloc(1024); }, [](void* it) { std::free(it); }},
};

TEST(Resources, SeeWhatIsNotLetGo) {
    constexpr std::size_t count = 20;
    // With the first window of a thread the system makes one of its own.
    const HWND first = MakeWindow();
    for (const auto& kind : kKinds) {
        SCOPED_TRACE(kind.kind);
        std::vector<void*> made(count);
        // What the system makes with the first of a kind stays.
        kind.drop(kind.make());
        CountResources();
        const std::size_t before = CountResources().*kind.count;
        for (void*& it : made)
            it = kind.make();
        const std::size_t meanwhile = CountResources().*kind.count;
        for (void* it : made)
            kind.drop(it);
        EXPECT_EQ(meanwhile - before, count);
        EXPECT_EQ(CountResources().*kind.count, before);
    }
    DestroyWindow(first);
}

} // namespace
} // namespace vesk

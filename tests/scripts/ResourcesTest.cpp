// Something of each kind that is made, and not let go, is seen in the counts.
#include "host/terminal/script/window/Resources.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace vesk {
namespace {

HWND MakeWindow(DWORD style, HWND parent) {
    return CreateWindowExA(0, "STATIC", "", style, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
}

// With the first window of a thread the system makes one of its own.
HWND Parent() {
    static const HWND parent = MakeWindow(WS_POPUP, nullptr);
    return parent;
}

constexpr struct {
    const char* kind;
    std::size_t Resources::*count;
    void* (*make)();
    void (*drop)(void*);
} kKinds[] = {
    {"brush", &Resources::gdi, [] { return static_cast<void*>(CreateSolidBrush(RGB(1, 2, 3))); },
     [](void* it) { DeleteObject(it); }},
    {"font", &Resources::gdi,
     [] {
         const LOGFONTA font{};
         return static_cast<void*>(CreateFontIndirectA(&font));
     },
     [](void* it) { DeleteObject(it); }},
    {"device context", &Resources::gdi, [] { return static_cast<void*>(CreateMetaFileA(nullptr)); },
     [](void* it) { DeleteMetaFile(CloseMetaFile(static_cast<HDC>(it))); }},
    {"hidden window", &Resources::windows, [] { return static_cast<void*>(MakeWindow(WS_POPUP, nullptr)); },
     [](void* it) { DestroyWindow(static_cast<HWND>(it)); }},
    {"message window", &Resources::windows, [] { return static_cast<void*>(MakeWindow(0, HWND_MESSAGE)); },
     [](void* it) { DestroyWindow(static_cast<HWND>(it)); }},
    {"child window", &Resources::windows, [] { return static_cast<void*>(MakeWindow(WS_CHILD, Parent())); },
     [](void* it) { DestroyWindow(static_cast<HWND>(it)); }},
    {"menu", &Resources::user, [] { return static_cast<void*>(CreatePopupMenu()); },
     [](void* it) { DestroyMenu(static_cast<HMENU>(it)); }},
    {"icon", &Resources::user, [] { return static_cast<void*>(CopyIcon(LoadIconA(nullptr, IDI_APPLICATION))); },
     [](void* it) { DestroyIcon(static_cast<HICON>(it)); }},
    {"event", &Resources::handles,
     [] { return static_cast<void*>(CreateEventA(nullptr, FALSE, FALSE, nullptr)); },
     [](void* it) { CloseHandle(it); }},
    {"memory block", &Resources::heapBlocks, [] { return std::malloc(5000); }, [](void* it) { std::free(it); }},
    {"large memory", &Resources::heapKiB, [] { return std::malloc(1024); }, [](void* it) { std::free(it); }},
};

TEST(Resources, SeeWhatIsNotLetGo) {
    constexpr std::size_t count = 20;
    Parent();
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
}

} // namespace
} // namespace vesk

// What the program holds of the system, counted, to be compared with an earlier count.
#pragma once

#include <cstddef>
#include <string>

namespace vesk {

struct Resources {
    std::size_t privateKiB; // memory of this process alone
    std::size_t heapKiB;    // handed out by its heaps, in so many blocks
    std::size_t heapBlocks;
    std::size_t handles; // of the kernel
    std::size_t gdi;     // fonts, brushes, bitmaps, regions, device contexts
    std::size_t user;    // windows, menus, icons, cursors
    std::size_t windows; // hidden and message windows too
    std::size_t menus;   // these two are 0 where the system itself tells `user`
    std::size_t icons;   // and cursors
};

Resources CountResources();

// "private 12345 heap 2345 blocks 678 handles 9 ...", memory in KiB.
std::string Text(const Resources& resources);

} // namespace vesk

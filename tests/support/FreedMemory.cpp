#include "tests/support/FreedMemory.h"

#include "tests/support/ImageEdit.h"

#include <algorithm>
#include <cstring>
#include <malloc.h>
#include <vector>

namespace freed {
namespace {

constexpr unsigned char kPoison = 0xDD;

struct Block {
    unsigned char* memory;
    std::size_t bytes;
};
std::vector<Block> g_kept;

void Keep(void* memory) {
    if (!memory) return;
    const std::size_t bytes = _msize(memory);
    std::memset(memory, kPoison, bytes);
    g_kept.push_back({static_cast<unsigned char*>(memory), bytes});
}

} // namespace

void Watch(HMODULE plugin) {
    ReplaceImport(plugin, "msvcrt.dll", "free", Keep);
}

int WrittenBlocks() {
    int written = 0;
    for (const auto& [memory, bytes] : g_kept) {
        written += !std::all_of(memory, memory + bytes, [](unsigned char byte) { return byte == kPoison; });
        std::free(memory);
    }
    g_kept.clear();
    return written;
}

} // namespace freed

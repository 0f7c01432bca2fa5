#include "bench/Rounds.h"

#include <malloc.h>

namespace {

std::uint64_t g_allocations = 0; // one thread

} // namespace

std::uint64_t bench::AllocationsSoFar() {
    return g_allocations;
}

std::size_t bench::HeapBytes() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// The C library's own names for its functions; ours stand before them in the search for the symbol.
// operator new ends here as well.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);

void* malloc(std::size_t bytes) {
    ++g_allocations;
    return __libc_malloc(bytes);
}
void* calloc(std::size_t count, std::size_t bytes) {
    ++g_allocations;
    return __libc_calloc(count, bytes);
}
void* realloc(void* block, std::size_t bytes) {
    ++g_allocations;
    return __libc_realloc(block, bytes);
}
}

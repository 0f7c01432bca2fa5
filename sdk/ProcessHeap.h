// Memory that either side of the boundary may grow or free: the process heap. Elsewhere than on
// Windows, where there is only one side, it is the C heap.
#pragma once

#include <cstddef>

#ifdef _WIN32
extern "C" {
__declspec(dllimport) void* __stdcall GetProcessHeap(void);
__declspec(dllimport) void* __stdcall HeapAlloc(void*, unsigned long, unsigned long long);
__declspec(dllimport) int __stdcall HeapFree(void*, unsigned long, void*);
}

namespace sdk {
// Null when there is no memory.
inline void* ProcessHeapAllocate(std::size_t bytes) {
    return HeapAlloc(GetProcessHeap(), 0, bytes);
}
inline void ProcessHeapRelease(void* memory) {
    if (memory) HeapFree(GetProcessHeap(), 0, memory);
}
} // namespace sdk
#else
#include <cstdlib>

namespace sdk {
inline void* ProcessHeapAllocate(std::size_t bytes) {
    return std::malloc(bytes);
}
inline void ProcessHeapRelease(void* memory) {
    std::free(memory);
}
} // namespace sdk
#endif

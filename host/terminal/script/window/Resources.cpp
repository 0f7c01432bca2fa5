// Not every system tells these numbers. Where it does not, every value that a handle can have is tried: one
// whose upper half is 0 stands for any with the same lower half.
#include "host/terminal/script/window/Resources.h"

#include <windows.h>

#include <psapi.h>

#include <initializer_list>
#include <utility>

namespace vesk {
namespace {

constexpr std::size_t kKiB = 1024;
constexpr UINT_PTR kEndOfHandles = 0x10000;
constexpr UINT_PTR kUserHandleStep = 2, kKernelHandleStep = 4;
// Kernel handles are given out from below, so behind so many free ones there is no other.
constexpr UINT_PTR kMostFreeHandles = 1000;

template <class Handle, class Test>
std::size_t CountHandles(UINT_PTR step, const Test& isOne) {
    std::size_t count = 0;
    for (UINT_PTR value = step; value < kEndOfHandles; value += step)
        if (isOne(reinterpret_cast<Handle>(value))) ++count;
    return count;
}

bool IsIcon(HICON icon) {
    ICONINFO parts{};
    if (!GetIconInfo(icon, &parts)) return false;
    for (const HBITMAP copy : {parts.hbmMask, parts.hbmColor})
        if (copy) DeleteObject(copy);
    return true;
}

BOOL CALLBACK AddWindow(HWND window, LPARAM count) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) ++*reinterpret_cast<std::size_t*>(count);
    return TRUE;
}

std::size_t CountWindows() {
    std::size_t count = 0;
    const auto list = reinterpret_cast<LPARAM>(&count);
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            EnumChildWindows(window, AddWindow, parameter);
            return AddWindow(window, parameter);
        },
        list);
    for (HWND window = nullptr; (window = FindWindowExA(HWND_MESSAGE, window, nullptr, nullptr));)
        AddWindow(window, list);
    return count;
}

std::size_t CountKernelHandles() {
    DWORD told = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &told) && told) return told;
    std::size_t count = 0;
    UINT_PTR last = 0;
    for (UINT_PTR value = kKernelHandleStep; value < last + kMostFreeHandles * kKernelHandleStep;
         value += kKernelHandleStep) {
        DWORD ignored = 0;
        if (!GetHandleInformation(reinterpret_cast<HANDLE>(value), &ignored)) continue;
        last = value;
        ++count;
    }
    return count;
}

void AddHeap(HANDLE heap, Resources& resources) {
    std::size_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
        bytes += entry.cbData;
        ++resources.heapBlocks;
    }
    HeapUnlock(heap);
    resources.heapKiB += bytes / kKiB;
}

void CountMemory(Resources& resources) {
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    resources.privateKiB = memory.PagefileUsage / kKiB;
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(std::size(heaps)), heaps);
    for (DWORD i = 0; i < count && i < std::size(heaps); ++i)
        AddHeap(heaps[i], resources);
}

} // namespace

Resources CountResources() {
    Resources resources{};
    CountMemory(resources);
    resources.handles = CountKernelHandles();
    resources.windows = CountWindows();
    resources.gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    resources.user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    if (!resources.user) {
        resources.menus = CountHandles<HMENU>(kUserHandleStep, IsMenu);
        resources.icons = CountHandles<HICON>(kUserHandleStep, IsIcon);
        resources.user = resources.windows + resources.menus + resources.icons;
    }
    if (!resources.gdi) resources.gdi = CountHandles<HGDIOBJ>(1, GetObjectType);
    return resources;
}

std::string Text(const Resources& resources) {
    const std::pair<const char*, std::size_t> counts[] = {
        {"private", resources.privateKiB}, {"heap", resources.heapKiB}, {"blocks", resources.heapBlocks},
        {"handles", resources.handles},    {"gdi", resources.gdi},      {"user", resources.user},
        {"windows", resources.windows},    {"menus", resources.menus},  {"icons", resources.icons},
    };
    std::string text;
    for (const auto& [name, count] : counts)
        text.append(text.empty() ? "" : " ").append(name).append(" ").append(std::to_string(count));
    return text;
}

} // namespace vesk

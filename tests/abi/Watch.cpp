#include "Watch.h"

#include "Boundary.h"
#include "Image.h"
#include "Support.h"

namespace watch {
namespace {

constinit Counts g_seen = {};

struct HeapBlock {
    const void* memory;
    bool freed;
};
constinit HeapBlock g_heap[8192] = {};
constinit int g_heapCount = 0;

struct Originals {
    int (*openScratch)(void**, unsigned, QmxError*);
    int (*closeScratch)(void**, QmxError*);
    int (*openMessage)(void**, QmxError*);
    int (*closeMessage)(void**, QmxError*);
    int (*startMessage)(void*, void*, QmxError*);
    int (*addData)(void*, unsigned, unsigned, const QmxDatum*, QmxError*);
    void* (*heapAlloc)(void*, unsigned, size_t);
    int (*heapFree)(void*, unsigned, void*);
    void* (*setHook)(int, HookProc, HINSTANCE, unsigned);
    int (*removeHook)(void*);
};
constinit Originals g_original = {};

int OpenScratch(void** scratch, unsigned size, QmxError* error) {
    constexpr unsigned agreedSize = 32768;
    g_seen.scratchOpened += size == agreedSize;
    return g_original.openScratch(scratch, size, error);
}
int CloseScratch(void** scratch, QmxError* error) {
    ++g_seen.scratchClosed;
    return g_original.closeScratch(scratch, error);
}
int OpenMessage(void** message, QmxError* error) {
    ++g_seen.messageOpened;
    return g_original.openMessage(message, error);
}
int CloseMessage(void** message, QmxError* error) {
    ++g_seen.messageClosed;
    return g_original.closeMessage(message, error);
}
int StartMessage(void* message, void* scratch, QmxError* error) {
    g_seen.request[0] = 0;
    return g_original.startMessage(message, scratch, error);
}
int AddData(void* message, unsigned tag, unsigned count, const QmxDatum* data, QmxError* error) {
    auto& request = g_seen.request;
    AppendNumber(request, sizeof request, tag);
    Append(request, sizeof request, "=");
    for (unsigned i = 0; i < data->length && i < 200; ++i) {
        const char character[2] = {data->data[i], 0};
        Append(request, sizeof request, character);
    }
    Append(request, sizeof request, ";");
    return g_original.addData(message, tag, count, data, error);
}

void Allocated(const void* memory) {
    constexpr int room = sizeof g_heap / sizeof *g_heap;
    if (!memory || g_heapCount == room) return;
    g_heap[g_heapCount++] = {memory, false};
    ++g_seen.heapBlocks;
}
void* Allocate(void* heap, unsigned flags, size_t bytes) {
    void* memory = g_original.heapAlloc(heap, flags, bytes);
    Allocated(memory);
    return memory;
}
// The newest entry counts: the heap may give an address out again.
void Freed(const void* memory) {
    for (int i = g_heapCount; i-- > 0;) {
        if (g_heap[i].memory != memory) continue;
        g_seen.heapFaults += g_heap[i].freed;
        g_seen.heapBlocks -= !g_heap[i].freed;
        g_heap[i].freed = true;
        return;
    }
}
int Free(void* heap, unsigned flags, void* memory) {
    Freed(memory);
    return g_original.heapFree(heap, flags, memory);
}

void* SetHook(int kind, HookProc proc, HINSTANCE instance, unsigned thread) {
    void* hook = g_original.setHook(kind, proc, instance, thread);
    g_seen.hooksSet += hook != nullptr;
    return hook;
}
int RemoveHook(void* hook) {
    const int removed = g_original.removeHook(hook);
    g_seen.hooksRemoved += removed != 0;
    return removed;
}

template <typename F>
void Replace(HMODULE plugin, const char* library, const char* name, F* replacement, F*& original) {
    original =
        reinterpret_cast<F*>(image::ReplaceImport(plugin, library, name, reinterpret_cast<void*>(replacement)));
}

} // namespace

Counts& Seen() {
    return g_seen;
}

void AllocatedByHost(const void* memory) {
    Allocated(memory);
}

void FreedByHost(const void* memory) {
    Freed(memory);
}

void Install(HMODULE plugin) {
    g_seen = {};
    g_heapCount = 0;
    constexpr const char* connection = "connectvesk.dll";
    Replace(plugin, connection, "qmx_open_scratch", OpenScratch, g_original.openScratch);
    Replace(plugin, connection, "qmx_close_scratch", CloseScratch, g_original.closeScratch);
    Replace(plugin, connection, "qmx_ctor_primecb", OpenMessage, g_original.openMessage);
    Replace(plugin, connection, "qmx_dtor_primecb", CloseMessage, g_original.closeMessage);
    Replace(plugin, connection, "qmx_start_msg", StartMessage, g_original.startMessage);
    Replace(plugin, connection, "qmx_add_data", AddData, g_original.addData);
    Replace(plugin, "kernel32.dll", "HeapAlloc", Allocate, g_original.heapAlloc);
    Replace(plugin, "kernel32.dll", "HeapFree", Free, g_original.heapFree);
    Replace(plugin, "user32.dll", "SetWindowsHookExA", SetHook, g_original.setHook);
    if (!g_original.setHook) Replace(plugin, "user32.dll", "SetWindowsHookExW", SetHook, g_original.setHook);
    Replace(plugin, "user32.dll", "UnhookWindowsHookEx", RemoveHook, g_original.removeHook);
}

} // namespace watch

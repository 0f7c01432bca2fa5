// The string manager with which a module of ours makes its own boundary strings: buffers come from the
// process heap and are counted, so that a test can demand that none is left.
//
// Thread: any. Lifetime: as long as the module is loaded. Failure: null, as `StringManager` says.
//
// Example, one for the whole module:
//
//     HeapStringManager manager;
//     CString client("C001", manager);
//     ...
//     if (manager.LiveBuffers() != 0) Tell("strings were left behind");
#pragma once

#include "sdk/CString.h"
#include "sdk/ProcessHeap.h"

class HeapStringManager final : public StringManager {
public:
    HeapStringManager() : m_nil{{this, 0, 0, 2, 0}, '\0'} {}
    HeapStringManager(const HeapStringManager&) = delete;
    HeapStringManager& operator=(const HeapStringManager&) = delete;
    ~HeapStringManager() = default;

    StringHeader* Allocate(int chars, int charSize) override {
        if (chars < 0 || charSize < 1 || charSize > 4) return nullptr;
        const std::size_t bytes =
            sizeof(StringHeader) + (static_cast<std::size_t>(chars) + 1) * static_cast<std::size_t>(charSize);
        void* memory = sdk::ProcessHeapAllocate(bytes);
        if (!memory) return nullptr;
        auto* header = new (memory) StringHeader{this, 0, chars, 1, 0};
        std::memset(header->Text(), 0, static_cast<std::size_t>(charSize));
        m_live.fetch_add(1);
        return header;
    }
    void Free(StringHeader* header) override {
        if (!header || header == &m_nil.header) return;
        m_live.fetch_sub(1);
        sdk::ProcessHeapRelease(header);
    }
    StringHeader* Reallocate(StringHeader* header, int chars, int charSize) override {
        StringHeader* grown = Allocate(chars, charSize);
        if (!grown) return nullptr;
        const int kept = header->length < chars ? header->length : chars;
        const auto bytes = static_cast<std::size_t>(kept) * static_cast<std::size_t>(charSize);
        std::memcpy(grown->Text(), header->Text(), bytes);
        std::memset(grown->Text() + bytes, 0, static_cast<std::size_t>(charSize));
        grown->length = kept;
        grown->references = header->references;
        Free(header);
        return grown;
    }
    StringHeader* GetNilString() override {
        std::atomic_ref<std::int32_t>(m_nil.header.references).fetch_add(1);
        return &m_nil.header;
    }
    StringManager* Clone() override { return this; }

    // Buffers handed out and not yet freed; the shared empty string does not count.
    int LiveBuffers() const { return m_live.load(); }

private:
    struct Nil {
        StringHeader header;
        char zero[8];
    };

    Nil m_nil;
    std::atomic<int> m_live{0};
};

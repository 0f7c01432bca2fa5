// A string manager that finds faults: freed buffers stay, poisoned, so that a second free or a late write
// shows; every buffer ends in a canary, so that an overrun shows; an allocation can be made to fail.
#pragma once

#include "sdk/CString.h"

#include <cstdlib>
#include <map>

class QuarantineStringManager final : public StringManager {
public:
    QuarantineStringManager() : m_nil{{this, 0, 0, 2, 0}, {}} {}
    QuarantineStringManager(const QuarantineStringManager&) = delete;
    QuarantineStringManager& operator=(const QuarantineStringManager&) = delete;
    ~QuarantineStringManager() {
        for (auto& [header, block] : m_blocks)
            std::free(header);
    }

    StringHeader* Allocate(int chars, int charSize) override {
        ++allocations;
        return Make(chars, charSize);
    }
    void Free(StringHeader* header) override {
        if (header == &m_nil.header) return;
        const auto found = m_blocks.find(header);
        if (found == m_blocks.end() || found->second.freed) {
            ++m_faults;
            return;
        }
        CheckCanary(*header, found->second);
        found->second.freed = true;
        std::memset(static_cast<void*>(header), kPoison, found->second.bytes);
        --m_live;
    }
    StringHeader* Reallocate(StringHeader* header, int chars, int charSize) override {
        ++reallocations;
        StringHeader* grown = Make(chars, charSize);
        if (!grown) return nullptr;
        std::memcpy(grown->Text(), header->Text(), static_cast<std::size_t>(header->length) + 1);
        grown->length = header->length;
        grown->references = header->references;
        Free(header);
        return grown;
    }
    StringHeader* GetNilString() override {
        ++m_nil.header.references;
        return &m_nil.header;
    }
    StringManager* Clone() override { return cloneTo ? cloneTo : this; }

    int Live() const { return m_live; }
    // Double frees, frees of foreign buffers, overruns, and writes after a free.
    int Faults() const {
        int faults = m_faults;
        for (const auto& [header, block] : m_blocks)
            faults += block.freed && !IsPoisoned(*header, block);
        return faults;
    }

    bool failing = false;
    int allocations = 0;
    int reallocations = 0;
    StringManager* cloneTo = nullptr;

private:
    static constexpr unsigned char kPoison = 0xDD;
    static constexpr unsigned char kCanary = 0xFB;
    static constexpr std::size_t kCanaryBytes = 16;

    struct Block {
        std::size_t bytes; // without the canary
        bool freed;
    };
    struct Nil {
        StringHeader header;
        char zero[8];
    };

    StringHeader* Make(int chars, int charSize) {
        if (failing || chars < 0) return nullptr;
        const std::size_t bytes =
            sizeof(StringHeader) + (static_cast<std::size_t>(chars) + 1) * static_cast<std::size_t>(charSize);
        void* memory = std::malloc(bytes + kCanaryBytes);
        if (!memory) return nullptr;
        std::memset(memory, 0, bytes);
        std::memset(static_cast<char*>(memory) + bytes, kCanary, kCanaryBytes);
        auto* header = new (memory) StringHeader{this, 0, chars, 1, 0};
        m_blocks.emplace(header, Block{bytes, false});
        ++m_live;
        return header;
    }
    static bool Holds(const StringHeader& header, std::size_t from, std::size_t to, unsigned char value) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&header);
        for (std::size_t i = from; i < to; ++i)
            if (bytes[i] != value) return false;
        return true;
    }
    static bool IsPoisoned(const StringHeader& header, const Block& block) {
        return Holds(header, 0, block.bytes, kPoison);
    }
    void CheckCanary(const StringHeader& header, const Block& block) {
        m_faults += !Holds(header, block.bytes, block.bytes + kCanaryBytes, kCanary);
    }

    Nil m_nil;
    std::map<StringHeader*, Block> m_blocks;
    int m_live = 0;
    int m_faults = 0;
};

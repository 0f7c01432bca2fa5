// How often each of many keys stands somewhere. The keys are hashes; a million of them take one block of
// memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace planfold {

class KeyCounts {
public:
    // Soon asked for: where it lies is fetched meanwhile.
    void Expect(std::uint64_t key) const {
        if (!m_slots.empty()) __builtin_prefetch(&m_slots[static_cast<std::size_t>(key >> m_shift)]);
    }
    // Each returns the key's count afterwards. What is decremented was incremented before.
    std::uint32_t Increment(std::uint64_t key);
    std::uint32_t Decrement(std::uint64_t key);

    std::uint32_t Of(std::uint64_t key) const;

private:
    struct Slot {
        std::uint64_t key = 0; // 0: free
        std::uint32_t count = 0;
    };

    // The key's slot, or the free one where it belongs.
    std::size_t Find(std::uint64_t key) const;
    void MakeRoom();

    std::vector<Slot> m_slots; // a power of two of them, at most two thirds in use
    int m_shift = 0;
    std::size_t m_used = 0;
    std::size_t m_counted = 0; // of those, with a count
};

} // namespace planfold

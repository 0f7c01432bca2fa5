// Places in a list by the hash of a text that what stands there has. The texts are where they are and are not
// kept once more: there may be a million.
//
// Thread: one at a time; plain values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

class PlaceIndex {
public:
    // Two places may have the same text.
    void Add(std::string_view text, std::size_t place) {
        MakeRoom(m_count + 1);
        Put({HashOf(text), static_cast<std::uint32_t>(place) + 1});
        ++m_count;
    }
    // The first place put in under the text, or under one of the same hash, that `is` the one looked for.
    template <class Is>
    std::optional<std::size_t> Find(std::string_view text, Is is) const {
        if (m_slots.empty()) return std::nullopt;
        const std::uint32_t hash = HashOf(text);
        for (std::size_t at = hash & Mask(); m_slots[at].next != 0; at = (at + 1) & Mask())
            if (m_slots[at].hash == hash && is(m_slots[at].next - 1)) return m_slots[at].next - 1;
        return std::nullopt;
    }
    // For so many in all.
    void MakeRoom(std::size_t count) {
        if (2 * count <= m_slots.size()) return;
        std::size_t size = 64;
        while (size < 2 * count)
            size *= 2;
        for (const Slot& slot : std::exchange(m_slots, std::vector<Slot>(size)))
            if (slot.next != 0) Put(slot);
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t next = 0; // the place and 1; 0: there is none
    };
    static std::uint32_t HashOf(std::string_view text) {
        return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
    }
    std::size_t Mask() const { return m_slots.size() - 1; }
    void Put(const Slot& slot) {
        std::size_t at = slot.hash & Mask();
        while (m_slots[at].next != 0)
            at = (at + 1) & Mask();
        m_slots[at] = slot;
    }

    std::vector<Slot> m_slots; // at most half of them taken
    std::size_t m_count = 0;
};

} // namespace vesk

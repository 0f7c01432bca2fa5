#include "plugin/base/KeyCounts.h"

#include <bit>
#include <utility>

namespace planfold {

namespace {

constexpr std::size_t kFewestSlots = 16;

// No key is a free slot's.
std::uint64_t Stored(std::uint64_t key) {
    return key | 1;
}

} // namespace

// A key's highest bits are its place: slots and keys have the same order, and moving them into a larger table
// goes through both from the beginning to the end.
std::size_t KeyCounts::Find(std::uint64_t key) const {
    auto place = static_cast<std::size_t>(key >> m_shift);
    while (m_slots[place].key != key && m_slots[place].key != 0)
        place = (place + 1) & (m_slots.size() - 1);
    return place;
}

std::uint32_t KeyCounts::Increment(std::uint64_t key) {
    if (m_used * 3 >= m_slots.size() * 2) MakeRoom();
    Slot& slot = m_slots[Find(Stored(key))];
    m_used += slot.key == 0;
    m_counted += slot.count == 0;
    slot.key = Stored(key);
    return ++slot.count;
}

std::uint32_t KeyCounts::Decrement(std::uint64_t key) {
    Slot& slot = m_slots[Find(Stored(key))];
    m_counted -= slot.count == 1;
    return --slot.count; // a slot without a count goes when room is made
}

std::uint32_t KeyCounts::Of(std::uint64_t key) const {
    return m_slots.empty() ? 0 : m_slots[Find(Stored(key))].count;
}

void KeyCounts::MakeRoom() {
    const std::size_t size = std::bit_ceil(m_counted * 2 + kFewestSlots);
    const auto before = std::exchange(m_slots, std::vector<Slot>(size));
    m_shift = 64 - std::countr_zero(size);
    m_used = m_counted;
    for (const Slot& slot : before)
        if (slot.count > 0) m_slots[Find(slot.key)] = slot;
}

} // namespace planfold

// Records in the order of their arrival, row 0 the newest: a slot for each arrival and a bit for each slot that
// still has its record. Every question is O(log n), membership O(1).
#pragma once

#include "host/korvexcontrols/model/RankedBits.h"

namespace korvex {

inline constexpr std::uint32_t kNone = UINT32_MAX;

class RowOrder {
public:
    std::uint32_t Count() const { return m_live.Count(); }
    bool Contains(std::uint32_t record) const { return SlotOf(record) != kNone; }
    // The row of a record that stands here.
    std::uint32_t RowOf(std::uint32_t record) const { return Count() - 1 - m_live.Rank(m_slotOf[record]); }
    // `row` is less than Count().
    std::uint32_t RecordAt(std::uint32_t row) const { return m_recordAt[m_live.Select(Count() - 1 - row)]; }

    // In front of all; not one that stands here already.
    void Append(std::uint32_t record);
    void Remove(std::uint32_t record);
    void Clear();

    // Slots grow with time, so that the newer of two records has the larger one.
    std::uint32_t Slots() const { return m_live.Size(); }
    std::uint32_t SlotOf(std::uint32_t record) const {
        return record < m_slotOf.size() ? m_slotOf[record] : kNone;
    }
    std::uint32_t RecordOfSlot(std::uint32_t slot) const { return m_recordAt[slot]; }
    // All records, the newest first.
    std::vector<std::uint32_t> Records() const;

    // Whether most slots are empty, and closing the gaps, also those of bits that were kept for the same slots.
    bool IsSparse() const { return Slots() > kSparseSlots && Count() < Slots() / 4; }
    void Compact(RankedBits& companion);

private:
    static constexpr std::uint32_t kSparseSlots = 1024;

    RankedBits m_live;
    std::vector<std::uint32_t> m_recordAt; // by slot
    std::vector<std::uint32_t> m_slotOf;   // by record
};

} // namespace korvex

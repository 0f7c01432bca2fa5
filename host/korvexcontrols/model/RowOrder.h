// A growing row of bits that knows how many are set before each, and where the n-th set one is, in O(log n):
// a binary indexed tree over the counts of blocks of words.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvex {

class RankedBits {
public:
    std::uint32_t Size() const { return m_size; }
    std::uint32_t Count() const { return m_count; }
    bool Test(std::uint32_t bit) const {
        return bit < m_size && ((m_words[bit / kWordBits] >> (bit % kWordBits)) & 1) != 0;
    }
    // How many bits before this one are set.
    std::uint32_t Rank(std::uint32_t bit) const;
    // The set bit that has `rank` set ones before it; `rank` is less than Count().
    std::uint32_t Select(std::uint32_t rank) const;

    void Append(bool set);
    void Set(std::uint32_t bit, bool set);
    void Clear();
    // So many bits, of which those are set.
    void Assign(std::uint32_t size, std::span<const std::uint32_t> set);

    // Hands over the set bits, the last one first.
    template <class Take>
    void ForSet(Take&& take) const {
        for (std::size_t word = m_words.size(); word-- > 0;)
            for (std::uint64_t bits = m_words[word]; bits != 0;) {
                const auto last = static_cast<std::uint32_t>(std::bit_width(bits) - 1);
                bits ^= std::uint64_t{1} << last;
                take(static_cast<std::uint32_t>(word) * kWordBits + last);
            }
    }

private:
    static constexpr std::uint32_t kWordBits = 64, kBlockWords = 8, kBlockBits = kWordBits * kBlockWords;

    void OpenBlock();
    void Add(std::uint32_t block, std::uint32_t difference);
    std::uint32_t SumBefore(std::uint32_t block) const;

    std::uint32_t m_size = 0, m_count = 0;
    std::vector<std::uint64_t> m_words;
    std::vector<std::uint32_t> m_tree{0}; // node i holds the sum of the blocks that its lowest bit spans
};

// Records in the order of their arrival, row 0 the newest: a slot for each arrival and a bit for each slot that
// still has its record. Every question is O(log n), membership O(1).
inline constexpr std::uint32_t kNone = UINT32_MAX;

class RowOrder {
public:
    std::uint32_t Count() const { return m_live.Count(); }
    bool Contains(std::uint32_t record) const { return SlotOf(record) != kNone; }
    // The row of a record that stands here.
    std::uint32_t RowOf(std::uint32_t record) const { return Count() - 1 - m_live.Rank(m_slotOf[record]); }
    // `row` is less than Count().
    std::uint32_t RecordAt(std::uint32_t row) const { return m_recordAt[m_live.Select(Count() - 1 - row)]; }

    // Puts a record in front of all; not one that stands here already.
    void Append(std::uint32_t record);
    void Remove(std::uint32_t record);
    void Clear();

    // Slots grow with time, so that the newer of two records has the larger one.
    std::uint32_t Slots() const { return m_live.Size(); }
    std::uint32_t SlotOf(std::uint32_t record) const {
        return record < m_slotOf.size() ? m_slotOf[record] : kNone;
    }
    std::uint32_t RecordOfSlot(std::uint32_t slot) const { return m_recordAt[slot]; }
    // All records, or those of some slots, the newest first.
    std::vector<std::uint32_t> Records() const { return RecordsOf(m_live); }
    std::vector<std::uint32_t> RecordsOf(const RankedBits& slots) const;
    template <class Take>
    void ForRecords(Take&& take) const {
        m_live.ForSet([&](std::uint32_t slot) { take(m_recordAt[slot]); });
    }

    // When most slots are empty, Compact closes the gaps, also those of bits that were kept for the same slots.
    bool IsSparse() const { return Slots() > kSparseSlots && Count() < Slots() / 4; }
    void Compact(RankedBits& companion);

private:
    static constexpr std::uint32_t kSparseSlots = 1024;

    RankedBits m_live;
    std::vector<std::uint32_t> m_recordAt; // by slot
    std::vector<std::uint32_t> m_slotOf;   // by record
};

} // namespace korvex

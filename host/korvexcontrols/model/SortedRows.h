// Records in the order of their keys, which is kept under insertion and removal in about O(log n): a row of
// blocks, the blocks' counts in a binary indexed tree, and for each record the block it is in. The keys lie
// beside each other, so that a search stays in the cache.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace korvex {

class SortedRows {
public:
    std::uint32_t Count() const { return m_count; }
    bool Contains(std::uint32_t record) const {
        return record < m_blockOf.size() && m_blockOf[record] != kNoBlock;
    }
    // `row` is less than Count().
    std::uint32_t RecordAt(std::uint32_t row) const;
    // The row of a record that stands here.
    std::uint32_t RowOf(std::uint32_t record) const;

    std::vector<std::uint32_t> Records() const;

    void Assign(std::span<const std::uint32_t> records, std::span<const std::uint64_t> keys);
    // `standsBefore(other)` tells whether the record belongs in front of the other, which has the same key.
    // Insert answers the row that it got, Erase the one that it had.
    template <class StandsBefore>
    std::uint32_t Insert(std::uint32_t record, std::uint64_t key, StandsBefore&& standsBefore) {
        if (m_row.empty()) return InsertFirst(record, key);
        const std::size_t behind = FirstBehind(m_firstKeys, key, [&](std::size_t place) {
            return standsBefore(m_blocks[m_row[place]].records.front());
        });
        const std::uint32_t block = m_row[behind ? behind - 1 : 0];
        const Block& into = m_blocks[block];
        const std::size_t at =
            FirstBehind(into.keys, key, [&](std::size_t i) { return standsBefore(into.records[i]); });
        return InsertInto(block, at, record, key);
    }
    std::uint32_t Erase(std::uint32_t record);

private:
    static constexpr std::uint32_t kNoBlock = UINT32_MAX;
    static constexpr std::size_t kFullBlock = 256, kFewBlocks = 8;

    struct Block {
        std::vector<std::uint64_t> keys;
        std::vector<std::uint32_t> records;
        std::uint32_t place = 0; // in m_row
    };

    std::uint32_t OpenBlock(std::size_t place);
    // Rows in the blocks before this place.
    std::uint32_t RowsBefore(std::uint32_t place) const;
    // The first place whose key is greater, or equal and `isBehind(place)`.
    template <class IsBehind>
    static std::size_t FirstBehind(const std::vector<std::uint64_t>& keys, std::uint64_t key,
                                   const IsBehind& isBehind) {
        auto low = static_cast<std::size_t>(std::ranges::lower_bound(keys, key) - keys.begin());
        auto high = static_cast<std::size_t>(std::ranges::upper_bound(keys, key) - keys.begin());
        while (low < high) {
            const std::size_t middle = (low + high) / 2;
            isBehind(middle) ? high = middle : low = middle + 1;
        }
        return low;
    }
    std::uint32_t InsertFirst(std::uint32_t record, std::uint64_t key);
    std::uint32_t InsertInto(std::uint32_t block, std::size_t at, std::uint32_t record, std::uint64_t key);
    void Split(std::uint32_t block);
    void FillBlocksAnew();
    void Enter(std::uint32_t record, std::uint32_t block);
    void CountAnew();
    void Add(std::uint32_t place, std::uint32_t difference);

    std::vector<Block> m_blocks;
    std::vector<std::uint32_t> m_free;      // blocks without records
    std::vector<std::uint32_t> m_row;       // the blocks in their order; none is empty
    std::vector<std::uint64_t> m_firstKeys; // of the blocks in m_row
    std::vector<std::uint32_t> m_tree{0};   // over m_row
    std::vector<std::uint32_t> m_blockOf;   // by record
    std::uint32_t m_count = 0;
};

} // namespace korvex

// Records in an order that is kept under insertion and removal in about O(log n): a row of blocks, the blocks'
// counts in a binary indexed tree, and for each record the block it is in.
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

    void Assign(std::span<const std::uint32_t> records);
    // `standsBefore(other)`: whether the record belongs in front of the other.
    template <class StandsBefore>
    void Insert(std::uint32_t record, StandsBefore&& standsBefore) {
        if (m_row.empty()) return InsertFirst(record);
        const auto firstBehind = std::ranges::partition_point(
            m_row, [&](std::uint32_t block) { return !standsBefore(m_blocks[block].records.front()); });
        const auto place = static_cast<std::size_t>(firstBehind - m_row.begin());
        const std::uint32_t block = m_row[place ? place - 1 : 0];
        const auto& records = m_blocks[block].records;
        const auto at =
            std::ranges::partition_point(records, [&](std::uint32_t other) { return !standsBefore(other); });
        InsertInto(block, static_cast<std::size_t>(at - records.begin()), record);
    }
    void Erase(std::uint32_t record);

private:
    static constexpr std::uint32_t kNoBlock = UINT32_MAX;
    static constexpr std::size_t kFullBlock = 512;

    struct Block {
        std::vector<std::uint32_t> records;
        std::uint32_t place = 0; // in m_row
    };

    std::uint32_t OpenBlock(std::size_t place);
    void InsertFirst(std::uint32_t record);
    void InsertInto(std::uint32_t block, std::size_t at, std::uint32_t record);
    void Split(std::uint32_t block);
    void Enter(std::uint32_t record, std::uint32_t block);
    void CountAnew();
    void Add(std::uint32_t place, std::uint32_t difference);

    std::vector<Block> m_blocks;
    std::vector<std::uint32_t> m_free;    // blocks without records
    std::vector<std::uint32_t> m_row;     // the blocks in their order; none is empty
    std::vector<std::uint32_t> m_tree{0}; // over m_row
    std::vector<std::uint32_t> m_blockOf; // by record
    std::uint32_t m_count = 0;
};

} // namespace korvex

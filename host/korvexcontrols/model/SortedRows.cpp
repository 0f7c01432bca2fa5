#include "host/korvexcontrols/model/SortedRows.h"

#include <bit>
#include <utility>

namespace korvex {

std::uint32_t SortedRows::RecordAt(std::uint32_t row) const {
    const auto places = static_cast<std::uint32_t>(m_row.size());
    std::uint32_t place = 0;
    for (std::uint32_t step = std::bit_floor(places); step > 0; step /= 2) {
        if (place + step > places || m_tree[place + step] > row) continue;
        place += step;
        row -= m_tree[place];
    }
    return m_blocks[m_row[place]].records[row];
}

std::uint32_t SortedRows::RowOf(std::uint32_t record) const {
    const Block& block = m_blocks[m_blockOf[record]];
    std::uint32_t row = 0;
    for (std::uint32_t node = block.place; node > 0; node &= node - 1)
        row += m_tree[node];
    return row + static_cast<std::uint32_t>(std::ranges::find(block.records, record) - block.records.begin());
}

void SortedRows::Assign(std::span<const std::uint32_t> records) {
    constexpr std::size_t filled = kFullBlock * 3 / 4;
    *this = SortedRows();
    for (std::size_t at = 0; at < records.size(); at += filled) {
        const auto piece = records.subspan(at, std::min(filled, records.size() - at));
        const auto block = static_cast<std::uint32_t>(m_blocks.size());
        m_blocks.push_back({{piece.begin(), piece.end()}, block});
        m_row.push_back(block);
        for (const std::uint32_t record : piece)
            Enter(record, block);
    }
    m_count = static_cast<std::uint32_t>(records.size());
    CountAnew();
}

void SortedRows::Enter(std::uint32_t record, std::uint32_t block) {
    if (record >= m_blockOf.size())
        m_blockOf.resize(std::max<std::size_t>(record + std::size_t{1}, m_blockOf.size() * 2), kNoBlock);
    m_blockOf[record] = block;
}

void SortedRows::Add(std::uint32_t place, std::uint32_t difference) {
    m_count += difference;
    for (std::uint32_t node = place + 1; node < m_tree.size(); node += node & -node)
        m_tree[node] += difference;
}

void SortedRows::CountAnew() {
    m_tree.assign(m_row.size() + 1, 0);
    for (std::uint32_t node = 1; node < m_tree.size(); ++node) {
        Block& block = m_blocks[m_row[node - 1]];
        block.place = node - 1;
        m_tree[node] += static_cast<std::uint32_t>(block.records.size());
        if (const std::uint32_t parent = node + (node & -node); parent < m_tree.size())
            m_tree[parent] += m_tree[node];
    }
}

std::uint32_t SortedRows::OpenBlock(std::size_t place) {
    auto block = static_cast<std::uint32_t>(m_blocks.size());
    if (m_free.empty()) {
        m_blocks.emplace_back();
    } else {
        block = m_free.back();
        m_free.pop_back();
    }
    m_row.insert(m_row.begin() + static_cast<std::ptrdiff_t>(place), block);
    return block;
}

void SortedRows::InsertFirst(std::uint32_t record) {
    const std::uint32_t block = OpenBlock(0);
    CountAnew();
    InsertInto(block, 0, record);
}

void SortedRows::InsertInto(std::uint32_t block, std::size_t at, std::uint32_t record) {
    auto& records = m_blocks[block].records;
    records.insert(records.begin() + static_cast<std::ptrdiff_t>(at), record);
    Enter(record, block);
    Add(m_blocks[block].place, 1);
    if (records.size() == kFullBlock) Split(block);
}

void SortedRows::Split(std::uint32_t block) {
    const std::uint32_t second = OpenBlock(m_blocks[block].place + std::size_t{1});
    auto& records = m_blocks[block].records;
    const auto middle = records.begin() + kFullBlock / 2;
    m_blocks[second].records.assign(middle, records.end());
    records.erase(middle, records.end());
    for (const std::uint32_t record : m_blocks[second].records)
        m_blockOf[record] = second;
    CountAnew();
}

void SortedRows::Erase(std::uint32_t record) {
    const std::uint32_t block = std::exchange(m_blockOf[record], kNoBlock);
    std::erase(m_blocks[block].records, record);
    Add(m_blocks[block].place, ~0u);
    if (!m_blocks[block].records.empty()) return;
    m_row.erase(m_row.begin() + m_blocks[block].place);
    m_free.push_back(block);
    CountAnew();
}

} // namespace korvex

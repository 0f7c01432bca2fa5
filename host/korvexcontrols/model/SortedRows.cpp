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

std::uint32_t SortedRows::RowsBefore(std::uint32_t place) const {
    std::uint32_t rows = 0;
    for (std::uint32_t node = place; node > 0; node &= node - 1)
        rows += m_tree[node];
    return rows;
}

std::uint32_t SortedRows::RowOf(std::uint32_t record) const {
    const Block& block = m_blocks[m_blockOf[record]];
    const auto at = std::ranges::find(block.records, record) - block.records.begin();
    return RowsBefore(block.place) + static_cast<std::uint32_t>(at);
}

std::vector<std::uint32_t> SortedRows::Records() const {
    std::vector<std::uint32_t> records;
    records.reserve(m_count);
    for (const std::uint32_t block : m_row)
        records.insert(records.end(), m_blocks[block].records.begin(), m_blocks[block].records.end());
    return records;
}

void SortedRows::Assign(std::span<const std::uint32_t> records, std::span<const std::uint64_t> keys) {
    constexpr std::size_t filled = kFullBlock * 3 / 4;
    *this = SortedRows();
    for (std::size_t at = 0; at < records.size(); at += filled) {
        const std::size_t size = std::min(filled, records.size() - at);
        const std::uint32_t block = OpenBlock(m_row.size());
        Block& into = m_blocks[block];
        into.keys.assign(keys.begin() + static_cast<std::ptrdiff_t>(at),
                         keys.begin() + static_cast<std::ptrdiff_t>(at + size));
        into.records.assign(records.begin() + static_cast<std::ptrdiff_t>(at),
                            records.begin() + static_cast<std::ptrdiff_t>(at + size));
        for (const std::uint32_t record : into.records)
            Enter(record, block);
    }
    m_count = static_cast<std::uint32_t>(records.size());
    CountAnew();
}

// Blocks that stay nearly empty, while others fill and are split, would become too many.
void SortedRows::FillBlocksAnew() {
    std::vector<std::uint64_t> keys;
    for (const std::uint32_t block : m_row)
        keys.insert(keys.end(), m_blocks[block].keys.begin(), m_blocks[block].keys.end());
    Assign(Records(), keys);
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
    m_firstKeys.resize(m_row.size());
    for (std::uint32_t node = 1; node < m_tree.size(); ++node) {
        Block& block = m_blocks[m_row[node - 1]];
        block.place = node - 1;
        if (!block.keys.empty()) m_firstKeys[node - 1] = block.keys.front();
        m_tree[node] += static_cast<std::uint32_t>(block.records.size());
        if (const std::uint32_t parent = node + (node & -node); parent < m_tree.size())
            m_tree[parent] += m_tree[node];
    }
}

std::uint32_t SortedRows::OpenBlock(std::size_t place) {
    auto block = static_cast<std::uint32_t>(m_blocks.size());
    if (m_free.empty()) {
        Block& opened = m_blocks.emplace_back();
        opened.keys.reserve(kFullBlock);
        opened.records.reserve(kFullBlock);
    } else {
        block = m_free.back();
        m_free.pop_back();
    }
    m_row.insert(m_row.begin() + static_cast<std::ptrdiff_t>(place), block);
    return block;
}

std::uint32_t SortedRows::InsertFirst(std::uint32_t record, std::uint64_t key) {
    const std::uint32_t block = OpenBlock(0);
    CountAnew();
    return InsertInto(block, 0, record, key);
}

std::uint32_t SortedRows::InsertInto(std::uint32_t block, std::size_t at, std::uint32_t record,
                                     std::uint64_t key) {
    Block& into = m_blocks[block];
    const auto place = static_cast<std::ptrdiff_t>(at);
    into.keys.insert(into.keys.begin() + place, key);
    into.records.insert(into.records.begin() + place, record);
    m_firstKeys[into.place] = into.keys.front();
    Enter(record, block);
    const std::uint32_t row = RowsBefore(into.place) + static_cast<std::uint32_t>(at);
    Add(into.place, 1);
    if (into.records.size() < kFullBlock) return row;
    m_row.size() > kFewBlocks + m_count / (kFullBlock / 4) ? FillBlocksAnew() : Split(block);
    return row;
}

void SortedRows::Split(std::uint32_t block) {
    const std::uint32_t opened = OpenBlock(m_blocks[block].place + std::size_t{1});
    Block &first = m_blocks[block], &second = m_blocks[opened];
    constexpr auto middle = static_cast<std::ptrdiff_t>(kFullBlock / 2);
    second.keys.assign(first.keys.begin() + middle, first.keys.end());
    second.records.assign(first.records.begin() + middle, first.records.end());
    first.keys.resize(kFullBlock / 2);
    first.records.resize(kFullBlock / 2);
    for (const std::uint32_t record : second.records)
        m_blockOf[record] = opened;
    CountAnew();
}

std::uint32_t SortedRows::Erase(std::uint32_t record) {
    const std::uint32_t block = std::exchange(m_blockOf[record], kNoBlock);
    Block& from = m_blocks[block];
    const auto at = std::ranges::find(from.records, record) - from.records.begin();
    const std::uint32_t row = RowsBefore(from.place) + static_cast<std::uint32_t>(at);
    from.keys.erase(from.keys.begin() + at);
    from.records.erase(from.records.begin() + at);
    Add(from.place, ~0u);
    if (!from.keys.empty()) {
        m_firstKeys[from.place] = from.keys.front();
        return row;
    }
    m_row.erase(m_row.begin() + from.place);
    m_free.push_back(block);
    CountAnew();
    return row;
}

} // namespace korvex

#include "host/korvexcontrols/model/RowOrder.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace korvex {

namespace {

// Without the processor's own instruction the library's count is a function call with a table.
std::uint32_t CountOf(std::uint64_t word) {
    word -= (word >> 1) & 0x5555555555555555u;
    word = (word & 0x3333333333333333u) + ((word >> 2) & 0x3333333333333333u);
    word = (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0Fu;
    return static_cast<std::uint32_t>((word * 0x0101010101010101u) >> 56);
}

std::uint32_t SelectInWord(std::uint64_t word, std::uint32_t rank) {
    std::uint32_t at = 0;
    for (std::uint32_t width = 32; width >= 8; width /= 2) {
        const std::uint64_t low = word & ((std::uint64_t{1} << width) - 1);
        const std::uint32_t count = CountOf(low);
        if (rank < count) {
            word = low;
        } else {
            rank -= count;
            word >>= width;
            at += width;
        }
    }
    for (; rank > 0; --rank)
        word &= word - 1;
    return at + static_cast<std::uint32_t>(std::countr_zero(word));
}

} // namespace

std::uint32_t RankedBits::SumBefore(std::uint32_t block) const {
    std::uint32_t sum = 0;
    for (; block > 0; block &= block - 1)
        sum += m_tree[block];
    return sum;
}

void RankedBits::Add(std::uint32_t block, std::uint32_t difference) {
    for (std::uint32_t node = block + 1; node < m_tree.size(); node += node & -node)
        m_tree[node] += difference;
}

std::uint32_t RankedBits::Rank(std::uint32_t bit) const {
    const std::uint32_t word = bit / kWordBits;
    std::uint32_t rank = SumBefore(bit / kBlockBits);
    for (std::uint32_t i = word / kBlockWords * kBlockWords; i < word; ++i)
        rank += CountOf(m_words[i]);
    if (const std::uint32_t within = bit % kWordBits)
        rank += CountOf(m_words[word] & ((std::uint64_t{1} << within) - 1));
    return rank;
}

std::uint32_t RankedBits::Select(std::uint32_t rank) const {
    const auto blocks = static_cast<std::uint32_t>(m_tree.size() - 1);
    std::uint32_t block = 0;
    for (std::uint32_t step = std::bit_floor(blocks); step > 0; step /= 2) {
        if (block + step > blocks || m_tree[block + step] > rank) continue;
        block += step;
        rank -= m_tree[block];
    }
    std::uint32_t word = block * kBlockWords;
    for (std::uint32_t count; rank >= (count = CountOf(m_words[word])); ++word)
        rank -= count;
    return word * kWordBits + SelectInWord(m_words[word], rank);
}

void RankedBits::OpenBlock() {
    m_words.resize(m_words.size() + kBlockWords, 0);
    const auto node = static_cast<std::uint32_t>(m_tree.size());
    m_tree.push_back(SumBefore(node - 1) - SumBefore(node & (node - 1)));
}

void RankedBits::Append(bool set) {
    if (m_size % kBlockBits == 0) OpenBlock();
    ++m_size;
    if (set) Set(m_size - 1, true);
}

void RankedBits::Set(std::uint32_t bit, bool set) {
    if (Test(bit) == set) return;
    m_words[bit / kWordBits] ^= std::uint64_t{1} << (bit % kWordBits);
    const std::uint32_t difference = set ? 1u : ~0u;
    m_count += difference;
    Add(bit / kBlockBits, difference);
}

void RankedBits::Clear() {
    m_size = m_count = 0;
    m_words.clear();
    m_tree.assign(1, 0);
}

void RankedBits::Assign(std::uint32_t size, std::span<const std::uint32_t> set) {
    const std::uint32_t blocks = (size + kBlockBits - 1) / kBlockBits;
    m_size = size;
    m_count = static_cast<std::uint32_t>(set.size());
    m_words.assign(std::size_t{blocks} * kBlockWords, 0);
    m_tree.assign(blocks + std::size_t{1}, 0);
    for (const std::uint32_t bit : set) {
        m_words[bit / kWordBits] |= std::uint64_t{1} << (bit % kWordBits);
        ++m_tree[bit / kBlockBits + 1];
    }
    for (std::uint32_t node = 1; node <= blocks; ++node)
        if (const std::uint32_t parent = node + (node & -node); parent <= blocks)
            m_tree[parent] += m_tree[node];
}

void RowOrder::Append(std::uint32_t record) {
    if (record >= m_slotOf.size())
        m_slotOf.resize(std::max<std::size_t>(record + std::size_t{1}, m_slotOf.size() * 2), kNone);
    m_recordAt.push_back(record);
    m_slotOf[record] = Slots();
    m_live.Append(true);
}

void RowOrder::Remove(std::uint32_t record) {
    m_live.Set(std::exchange(m_slotOf[record], kNone), false);
}

void RowOrder::Clear() {
    m_live.Clear();
    m_recordAt.clear();
    m_slotOf.clear();
}

std::vector<std::uint32_t> RowOrder::RecordsOf(const RankedBits& slots) const {
    std::vector<std::uint32_t> records;
    records.reserve(slots.Count());
    slots.ForSet([&](std::uint32_t slot) { records.push_back(m_recordAt[slot]); });
    return records;
}

void RowOrder::Compact(RankedBits& companion) {
    RankedBits live, kept;
    std::uint32_t to = 0;
    for (std::uint32_t slot = 0; slot < Slots(); ++slot) {
        if (!m_live.Test(slot)) continue;
        const std::uint32_t record = m_recordAt[slot];
        m_slotOf[record] = to;
        m_recordAt[to++] = record;
        live.Append(true);
        if (companion.Size()) kept.Append(companion.Test(slot));
    }
    m_recordAt.resize(to);
    m_live = std::move(live);
    companion = std::move(kept);
}

} // namespace korvex

// A growing row of bits that knows how many are set before each, and where the n-th set one is, in O(log n):
// a binary indexed tree over the counts of blocks of words.
#pragma once

#include <cstddef>
#include <cstdint>
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

private:
    static constexpr std::uint32_t kWordBits = 64, kBlockWords = 8, kBlockBits = kWordBits * kBlockWords;

    void OpenBlock();
    void Add(std::uint32_t block, std::uint32_t difference);
    std::uint32_t SumBefore(std::uint32_t block) const;

    std::uint32_t m_size = 0, m_count = 0;
    std::vector<std::uint64_t> m_words;
    std::vector<std::uint32_t> m_tree{0}; // node i holds the sum of the blocks that its lowest bit spans
};

} // namespace korvex

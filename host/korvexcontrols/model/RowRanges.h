// A set of rows as ranges: what is selected. Its cost is that of its ranges, not of its rows.
#pragma once

#include <cstdint>
#include <vector>

namespace korvex {

class RowRanges {
public:
    struct Range {
        std::uint32_t begin, end; // without `end`
        bool operator==(const Range&) const = default;
    };

    const std::vector<Range>& Ranges() const { return m_ranges; }
    std::uint32_t Count() const { return m_count; }
    bool Contains(std::uint32_t row) const;
    void Clear();
    void Set(std::uint32_t begin, std::uint32_t end, bool on);
    // Rows from here on move; the new row is not in the set.
    void InsertRow(std::uint32_t row);
    void RemoveRow(std::uint32_t row);
    // The rows that are in exactly one of the two sets.
    static RowRanges Difference(const RowRanges& one, const RowRanges& other);

    bool operator==(const RowRanges&) const = default;

private:
    std::size_t FirstEndingBehind(std::uint32_t row) const;

    std::vector<Range> m_ranges; // ascending, with gaps between them
    std::uint32_t m_count = 0;
};

} // namespace korvex

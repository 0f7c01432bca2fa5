// Which shown rows of a list are selected. A selected record that a filter hides is remembered and selected
// again when it comes back, unless the user has selected anew meanwhile.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace korvex {

// A set of rows as ranges. Its cost is that of its ranges, not of its rows.
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

class ListSelection {
public:
    const RowRanges& Rows() const { return m_rows; }
    // This is what the user does: what is hidden is no longer selected.
    void Select(std::uint32_t begin, std::uint32_t end, bool on);
    void Clear() { *this = {}; }
    void Deselect(std::uint32_t row) { m_rows.Set(row, row + 1, false); }
    // The record is gone, or is not to be selected when it comes back.
    void Forget(std::uint32_t record) { Remember(record, false); }

    void RowCame(std::uint32_t record, std::uint32_t row);
    void RowWent(std::uint32_t row) { m_rows.RemoveRow(row); }
    void RowWasHidden(std::uint32_t record, std::uint32_t row);
    void RowMoved(std::uint32_t from, std::uint32_t to);
    // The shown rows are found anew: before it the selected records are remembered, after it selected again.
    void RememberAll(std::span<const std::uint32_t> selected);
    bool RemembersAny() const { return !m_hidden.empty(); }
    void SelectRemembered(std::span<const std::uint32_t> shown);

private:
    bool IsRemembered(std::uint32_t record) const { return record < m_hidden.size() && m_hidden[record]; }
    void Remember(std::uint32_t record, bool on);

    RowRanges m_rows;
    std::vector<bool> m_hidden; // by record
};

} // namespace korvex

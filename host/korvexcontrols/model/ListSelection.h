// Which shown rows of a list are selected. A selected record that a filter hides is remembered and selected
// again when it comes back, unless the user has selected anew meanwhile.
#pragma once

#include "host/korvexcontrols/model/RowRanges.h"

#include <span>

namespace korvex {

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

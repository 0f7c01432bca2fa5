// Selection and focus of a list's shown rows.
#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>

namespace korvex {

void ListModel::RowCame(std::uint32_t record, std::uint32_t row) {
    m_selected.InsertRow(row);
    if (!IsHiddenSelected(record)) return;
    m_selected.Set(row, row + 1, true);
    SetHiddenSelected(record, false);
}

void ListModel::RowWent(std::uint32_t record, std::uint32_t row) {
    m_selected.RemoveRow(row);
    // The record is no more: the row now in its place takes over.
    if (m_focused == record) m_focused = ShownCount() ? ShownAt(std::min(row, ShownCount() - 1)) : kNone;
}

void ListModel::SetHiddenSelected(std::uint32_t record, bool on) {
    if (on && record >= m_hiddenSelected.size()) m_hiddenSelected.resize(record + std::size_t{1});
    if (record < m_hiddenSelected.size()) m_hiddenSelected[record] = on;
}

void ListModel::SelectRows(std::uint32_t begin, std::uint32_t end, bool on) {
    m_hiddenSelected.clear();
    m_selected.Set(begin, std::min(end, ShownCount()), on);
}

void ListModel::SelectOnly(std::uint32_t record) {
    const std::uint32_t row = ShownRowOf(record);
    if (row == kNone) return;
    m_selected.Clear();
    SelectRows(row, row + 1, true);
    m_focused = record;
}

void ListModel::Deselect(std::uint32_t record) {
    SetHiddenSelected(record, false);
    const std::uint32_t row = ShownRowOf(record);
    if (row != kNone) m_selected.Set(row, row + 1, false);
}

std::vector<std::uint32_t> ListModel::SelectedRecords(std::uint32_t most) const {
    std::vector<std::uint32_t> records;
    records.reserve(std::min(most, m_selected.Count()));
    for (const RowRanges::Range& range : m_selected.Ranges())
        for (std::uint32_t row = range.begin; row < range.end; ++row) {
            if (records.size() == most) return records;
            records.push_back(ShownAt(row));
        }
    return records;
}

} // namespace korvex

#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>

namespace korvex {

std::uint32_t ListModel::ShownCount() const {
    return m_order.Count();
}

std::uint32_t ListModel::ShownAt(std::uint32_t row) const {
    return row < ShownCount() ? m_order.RecordAt(row) : kNone;
}

std::uint32_t ListModel::ShownRowOf(std::uint32_t record) const {
    return IndexOf(record);
}

Change ListModel::InsertFront(std::uint32_t record) {
    if (record == kNone) return {};
    if (Contains(record)) return Repaint(record);
    m_order.Append(record);
    RowCame(record, 0);
    m_focused = record;
    return {Change::inserted, 0, 0};
}

Change ListModel::Remove(std::uint32_t record) {
    if (!Contains(record)) return {};
    const std::uint32_t row = ShownRowOf(record);
    m_order.Remove(record);
    RowWent(record, row);
    return {Change::removed, row, 0};
}

Change ListModel::RemoveAll() {
    m_order.Clear();
    m_selected.Clear();
    m_hiddenSelected.clear();
    m_focused = kNone;
    return {Change::everything, 0, 0};
}

Change ListModel::Repaint(std::uint32_t record) {
    const std::uint32_t row = ShownRowOf(record);
    if (row == kNone) return {};
    return {Change::repainted, row, row};
}

void ListModel::RowCame(std::uint32_t record, std::uint32_t row) {
    m_selected.InsertRow(row);
    if (!IsHiddenSelected(record)) return;
    m_selected.Set(row, row + 1, true);
    SetHiddenSelected(record, false);
}

void ListModel::RowWent(std::uint32_t record, std::uint32_t row) {
    m_selected.RemoveRow(row);
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

#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>

namespace korvex {

ListChange ListModel::InsertFront(std::uint32_t record) {
    if (record == kNone) return {};
    if (Contains(record)) return Repaint(record);
    const std::uint32_t row = m_rows.InsertFront(record);
    if (row == kNone) return {};
    m_selection.RowCame(record, row);
    m_focused = record;
    return {ListChange::inserted, row, row};
}

ListChange ListModel::Remove(std::uint32_t record) {
    if (!Contains(record)) return {};
    const std::uint32_t row = m_rows.Remove(record);
    m_selection.Forget(record);
    // The record is no more: the row now in its place takes the focus over.
    if (m_focused == record)
        m_focused = row == kNone || !ShownCount() ? kNone : ShownAt(std::min(row, ShownCount() - 1));
    if (row == kNone) return {};
    m_selection.RowWent(row);
    return {ListChange::removed, row, row};
}

ListChange ListModel::RemoveAll() {
    if (!RowCount()) return {};
    m_rows.RemoveAll();
    m_selection.Clear();
    m_focused = kNone;
    return {ListChange::everything, 0, 0};
}

ListChange ListModel::Repaint(std::uint32_t record) {
    if (!Contains(record)) return {};
    const auto [from, to] = m_rows.Update(record);
    if (from == to) return from == kNone ? ListChange() : ListChange{ListChange::repainted, from, from};
    if (to == kNone) {
        m_selection.RowWasHidden(record, from);
        return {ListChange::removed, from, from};
    }
    if (from == kNone) {
        m_selection.RowCame(record, to);
        return {ListChange::inserted, to, to};
    }
    m_selection.RowMoved(from, to);
    return {ListChange::moved, from, to};
}

template <class Operation>
ListChange ListModel::Rearrange(Operation&& operation) {
    m_selection.RememberAll(SelectedRecords());
    operation();
    m_rows.Arrange();
    m_selection.SelectRemembered(m_selection.RemembersAny() ? m_rows.ShownRecords()
                                                            : std::vector<std::uint32_t>());
    return {ListChange::everything, 0, 0};
}

ListChange ListModel::SetFilter(std::int32_t column, const FilterInput* input) {
    return Rearrange([&] { m_rows.Filters().Set(column, input); });
}

ListChange ListModel::ClearFilters() {
    return Rearrange([&] { m_rows.Filters().Clear(); });
}

ListChange ListModel::SetOwnerFilter(std::int32_t column, const std::string_view* text) {
    return Rearrange([&] { m_rows.Filters().SetOwner(column, text); });
}

ListChange ListModel::SetCondition(RowFilters::Condition condition) {
    return Rearrange([&] { m_rows.Filters().SetCondition(std::move(condition)); });
}

ListChange ListModel::Arrange(std::span<const KeptFilter> filters, std::vector<SortColumn> sort) {
    return Rearrange([&] {
        m_rows.Filters().Clear();
        for (const KeptFilter& filter : filters)
            m_rows.Filters().Set(filter.column, &filter.input);
        m_rows.SetSort(std::move(sort));
    });
}

ListChange ListModel::SetSort(std::vector<SortColumn> columns) {
    return Rearrange([&] { m_rows.SetSort(std::move(columns)); });
}

void ListModel::SelectRows(std::uint32_t begin, std::uint32_t end, bool on) {
    m_selection.Select(begin, std::min(end, ShownCount()), on);
}

void ListModel::SelectOnly(std::uint32_t record) {
    const std::uint32_t row = ShownRowOf(record);
    if (row == kNone) return;
    m_selection.Clear();
    m_selection.Select(row, row + 1, true);
    m_focused = record;
}

void ListModel::Deselect(std::uint32_t record) {
    m_selection.Forget(record);
    const std::uint32_t row = ShownRowOf(record);
    if (row != kNone) m_selection.Deselect(row);
}

std::vector<std::uint32_t> ListModel::SelectedRecords(std::uint32_t most) const {
    std::vector<std::uint32_t> records;
    records.reserve(std::min(most, Selection().Count()));
    for (const RowRanges::Range& range : Selection().Ranges())
        for (std::uint32_t row = range.begin; row < range.end; ++row) {
            if (records.size() == most) return records;
            records.push_back(ShownAt(row));
        }
    return records;
}

} // namespace korvex

#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>
#include <array>

namespace korvex {

std::uint32_t ListModel::ShownCount() const {
    if (IsSorted()) return m_sorted.Count();
    return IsFiltered() ? m_passing.Count() : m_order.Count();
}

std::uint32_t ListModel::ShownAt(std::uint32_t row) const {
    if (row >= ShownCount()) return kNone;
    if (IsSorted()) return m_sorted.RecordAt(row);
    if (!IsFiltered()) return m_order.RecordAt(row);
    return m_order.RecordOfSlot(m_passing.Select(ShownCount() - 1 - row));
}

std::uint32_t ListModel::ShownRowOf(std::uint32_t record) const {
    if (!Contains(record)) return kNone;
    if (IsSorted()) return m_sorted.Contains(record) ? m_sorted.RowOf(record) : kNone;
    if (!IsFiltered()) return m_order.RowOf(record);
    const std::uint32_t slot = m_order.SlotOf(record);
    return m_passing.Test(slot) ? ShownCount() - 1 - m_passing.Rank(slot) : kNone;
}

bool ListModel::Passes(std::uint32_t record) const {
    const auto passes = [&](const auto& filter) {
        return filter->Passes(m_source.Cell(record, filter->Column()));
    };
    return (!m_ownerFilter || passes(m_ownerFilter)) && std::ranges::all_of(m_filters, passes);
}

std::uint32_t ListModel::Show(std::uint32_t record) {
    if (IsSorted()) {
        SortOrder::Probe probe(m_sort, record);
        return m_sorted.Insert(record, m_sort.MakeKey(record),
                               [&](std::uint32_t other) { return probe.StandsBefore(other); });
    }
    if (IsFiltered()) m_passing.Set(m_order.SlotOf(record), true);
    return ShownRowOf(record);
}

std::uint32_t ListModel::Hide(std::uint32_t record) {
    if (IsSorted()) return m_sorted.Contains(record) ? m_sorted.Erase(record) : kNone;
    const std::uint32_t row = ShownRowOf(record);
    if (IsFiltered()) m_passing.Set(m_order.SlotOf(record), false);
    return row;
}

ListChange ListModel::InsertFront(std::uint32_t record) {
    if (record == kNone) return {};
    if (Contains(record)) return Repaint(record);
    if (m_order.IsSparse()) m_order.Compact(m_passing);
    m_order.Append(record);
    if (IsFiltered() && !IsSorted()) m_passing.Append(false);
    if (!Passes(record)) return {};
    const std::uint32_t row = Show(record);
    RowCame(record, row);
    m_focused = record;
    return {ListChange::inserted, row, row};
}

ListChange ListModel::Remove(std::uint32_t record) {
    if (!Contains(record)) return {};
    const std::uint32_t row = Hide(record);
    m_order.Remove(record);
    SetHiddenSelected(record, false);
    if (row == kNone && m_focused == record) m_focused = kNone;
    if (row == kNone) return {};
    RowWent(record, row);
    return {ListChange::removed, row, row};
}

ListChange ListModel::RemoveAll() {
    if (!RowCount()) return {};
    m_order.Clear();
    m_sorted = SortedRows();
    m_passing.Clear();
    m_selected.Clear();
    m_hiddenSelected.clear();
    m_focused = kNone;
    return {ListChange::everything, 0, 0};
}

// A changed record is taken out by its place, as its cells no longer tell it, and put in again.
ListChange ListModel::Repaint(std::uint32_t record) {
    if (!Contains(record)) return {};
    const bool passes = Passes(record);
    if (passes && !IsSorted())
        if (const std::uint32_t row = ShownRowOf(record); row != kNone)
            return {ListChange::repainted, row, row};
    const std::uint32_t from = Hide(record);
    if (!passes && from == kNone) return {};
    if (!passes) {
        SetHiddenSelected(record, m_selected.Contains(from));
        m_selected.RemoveRow(from);
        return {ListChange::removed, from, from};
    }
    const std::uint32_t to = Show(record);
    if (from == kNone) {
        RowCame(record, to);
        return {ListChange::inserted, to, to};
    }
    if (from == to) return {ListChange::repainted, from, from};
    const bool selected = m_selected.Contains(from);
    m_selected.RemoveRow(from);
    m_selected.InsertRow(to);
    m_selected.Set(to, to + 1, selected);
    return {ListChange::moved, from, to};
}

template <class Operation>
ListChange ListModel::Rearrange(Operation&& operation) {
    for (const std::uint32_t record : SelectedRecords())
        SetHiddenSelected(record, true);
    operation();
    const auto shown = ShowAnew();
    SelectAnew(shown);
    return {ListChange::everything, 0, 0};
}

// The shown records in their order.
std::vector<std::uint32_t> ListModel::ShowAnew() {
    auto records = m_order.Records();
    if (m_ownerFilter) DropThatFail(*m_ownerFilter, records);
    for (const auto& filter : m_filters)
        DropThatFail(*filter, records);
    m_sorted = SortedRows();
    m_passing.Clear();
    if (IsSorted()) {
        const auto keys = m_sort.Sort(records);
        m_sorted.Assign(records, keys);
    } else if (IsFiltered()) {
        auto next = records.rbegin();
        for (std::uint32_t slot = 0; slot < m_order.Slots(); ++slot) {
            const bool shown = next != records.rend() && m_order.SlotOf(*next) == slot;
            m_passing.Append(shown);
            next += shown;
        }
    }
    return records;
}

// All that are to be selected are noted as hidden; those that are shown stop being it.
void ListModel::SelectAnew(std::span<const std::uint32_t> shown) {
    m_selected.Clear();
    if (m_hiddenSelected.empty()) return;
    for (std::uint32_t row = 0; row < shown.size(); ++row) {
        if (!IsHiddenSelected(shown[row])) continue;
        const std::uint32_t begin = row;
        for (; row < shown.size() && IsHiddenSelected(shown[row]); ++row)
            SetHiddenSelected(shown[row], false);
        m_selected.Set(begin, row, true);
    }
}

ListChange ListModel::SetFilter(std::int32_t column, const FilterInput* input) {
    return Rearrange([&] {
        std::erase_if(m_filters, [&](const auto& filter) { return filter->Column() == column; });
        if (input) m_filters.push_back(std::make_unique<const ColumnFilter>(column, *input));
    });
}

const ColumnFilter* ListModel::FilterOf(std::int32_t column) const {
    for (const auto& filter : m_filters)
        if (filter->Column() == column) return filter.get();
    return nullptr;
}

ListChange ListModel::ClearFilters() {
    return Rearrange([&] { m_filters.clear(); });
}

ListChange ListModel::SetOwnerFilter(std::int32_t column, const std::string_view* text) {
    return Rearrange([&] {
        m_ownerFilter.reset();
        if (!text) return;
        m_ownerFilter = std::make_unique<const ColumnFilter>(
            column, FilterInput{FilterOperator::exactly, std::string(*text), {}});
    });
}

ListChange ListModel::SetSort(std::vector<SortColumn> columns) {
    return Rearrange([&] { m_sort.SetColumns(std::move(columns)); });
}

ListChange ListModel::ClickHeading(std::int32_t column, ValueType type, bool adding) {
    auto columns = m_sort.Columns();
    const auto sorted = std::ranges::find(columns, column, &SortColumn::column);
    const bool known = sorted != columns.end() && (adding || columns.size() == 1);
    if (!known) {
        if (!adding) columns.clear();
        columns.push_back({column, false, type});
    } else if (sorted->descending) {
        columns.erase(sorted);
    } else {
        sorted->descending = true;
    }
    return SetSort(std::move(columns));
}

void ListModel::DropThatFail(const ColumnFilter& filter, std::vector<std::uint32_t>& records) const {
    std::array<std::string_view, kBatch> cells;
    std::size_t kept = 0;
    for (std::size_t at = 0; at < records.size(); at += kBatch) {
        const std::size_t count = std::min(kBatch, records.size() - at);
        m_source.Cells({&records[at], count}, filter.Column(), cells.data());
        for (std::size_t i = 0; i < count; ++i)
            if (filter.Passes(cells[i])) records[kept++] = records[at + i];
    }
    records.resize(kept);
}

} // namespace korvex

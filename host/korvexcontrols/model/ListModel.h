// A list without its window: the order of the rows, what of them is shown, selection and focus.
//
// "Rows" are all rows, 0 the newest; "shown rows" are those of the screen. Selection and focus belong to
// records.
#pragma once

#include "host/korvexcontrols/model/ListRows.h"
#include "host/korvexcontrols/model/ListSelection.h"

namespace korvex {

// What an operation did to the shown rows.
struct ListChange {
    enum Kind { nothing, inserted, removed, moved, repainted, everything };

    Kind kind = nothing;
    std::uint32_t row = 0; // before the change; of an insertion the new one
    std::uint32_t to = 0;  // where a moved row is now

    bool operator==(const ListChange&) const = default;
};

class ListModel {
public:
    explicit ListModel(CellSource& source) : m_rows(source) {}

    // A record that stands already is repainted; an unknown one changes nothing.
    ListChange InsertFront(std::uint32_t record);
    ListChange Remove(std::uint32_t record);
    ListChange RemoveAll();
    ListChange Repaint(std::uint32_t record);

    const ListRows& Rows() const { return m_rows; }
    bool Contains(std::uint32_t record) const { return m_rows.All().Contains(record); }
    std::uint32_t RowCount() const { return m_rows.All().Count(); }
    std::uint32_t RecordAt(std::uint32_t row) const {
        return row < RowCount() ? m_rows.All().RecordAt(row) : kNone;
    }
    std::uint32_t IndexOf(std::uint32_t record) const {
        return Contains(record) ? m_rows.All().RowOf(record) : kNone;
    }
    std::uint32_t ShownCount() const { return m_rows.ShownCount(); }
    std::uint32_t ShownAt(std::uint32_t row) const { return m_rows.ShownAt(row); }
    std::uint32_t ShownRowOf(std::uint32_t record) const { return m_rows.ShownRowOf(record); }

    // One filter a column; null takes it away.
    ListChange SetFilter(std::int32_t column, const FilterInput* input);
    ListChange ClearFilters(); // but the owner's
    // The text must equal the cell exactly, beside the filters of the columns; null takes it away.
    ListChange SetOwnerFilter(std::int32_t column, const std::string_view* text);
    // What else the owner decides of each record; none takes it away.
    ListChange SetCondition(RowFilters::Condition condition);
    // Filters and sort in one step.
    ListChange Arrange(std::span<const KeptFilter> filters, std::vector<SortColumn> sort);
    // No column is the natural order.
    ListChange SetSort(std::vector<SortColumn> columns);

    const RowRanges& Selection() const { return m_selection.Rows(); }
    // This is what the user does: what is hidden is no longer selected.
    void SelectRows(std::uint32_t begin, std::uint32_t end, bool on);
    // The record gets the focus, too.
    void SelectOnly(std::uint32_t record);
    void Deselect(std::uint32_t record);
    std::vector<std::uint32_t> SelectedRecords(std::uint32_t most = kNone) const; // from the top
    std::uint32_t Focused() const { return ShownRowOf(m_focused) == kNone ? kNone : m_focused; }
    void Focus(std::uint32_t record) { m_focused = ShownRowOf(record) == kNone ? kNone : record; }

private:
    // Finds the shown rows anew; selection and focus stay with their records.
    template <class Operation>
    ListChange Rearrange(Operation&& operation);

    ListRows m_rows;
    ListSelection m_selection;
    std::uint32_t m_focused = kNone; // has the focus again when a filter no longer hides it
};

} // namespace korvex

// A list without its window: the order of the rows, what of them is shown, selection and focus.
//
// "Rows" are all rows, 0 the newest; "shown rows" are those of the screen. Selection and focus belong to
// records. A selected record that a filter hides is remembered and selected again when it comes back, unless
// the user has selected anew meanwhile.
#pragma once

#include "host/korvexcontrols/model/ColumnFilter.h"
#include "host/korvexcontrols/model/RowOrder.h"
#include "host/korvexcontrols/model/RowRanges.h"
#include "host/korvexcontrols/model/SortOrder.h"
#include "host/korvexcontrols/model/SortedRows.h"

#include <functional>
#include <memory>

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
    explicit ListModel(CellSource& source) : m_source(source), m_sort(source, m_order) {}
    ListModel(const ListModel&) = delete;
    ListModel& operator=(const ListModel&) = delete;

    // A record that stands already is repainted; an unknown one changes nothing.
    ListChange InsertFront(std::uint32_t record);
    ListChange Remove(std::uint32_t record);
    ListChange RemoveAll();
    ListChange Repaint(std::uint32_t record);

    bool Contains(std::uint32_t record) const { return m_order.Contains(record); }
    std::uint32_t RowCount() const { return m_order.Count(); }
    std::uint32_t RecordAt(std::uint32_t row) const { return row < RowCount() ? m_order.RecordAt(row) : kNone; }
    std::uint32_t IndexOf(std::uint32_t record) const {
        return Contains(record) ? m_order.RowOf(record) : kNone;
    }

    std::uint32_t ShownCount() const;
    std::uint32_t ShownAt(std::uint32_t row) const;       // kNone behind the last
    std::uint32_t ShownRowOf(std::uint32_t record) const; // kNone when it is not shown

    // One filter a column; null takes it away.
    ListChange SetFilter(std::int32_t column, const FilterInput* input);
    const ColumnFilter* FilterOf(std::int32_t column) const;
    bool HasFilters() const { return !m_filters.empty(); }
    ListChange ClearFilters(); // but the owner's
    // Exact equality, beside the filters of the columns; null takes it away.
    ListChange SetOwnerFilter(std::int32_t column, const std::string_view* text);
    // No column is the natural order.
    ListChange SetSort(std::vector<SortColumn> columns);
    const std::vector<SortColumn>& Sort() const { return m_sort.Columns(); }

    // What a click on a heading makes of the sort: ascending, descending, natural. `adding` keeps the other
    // columns.
    ListChange ClickHeading(std::int32_t column, ValueType type, bool adding);

    // The first shown row, `steps` rows from `start` on and around the end, with a cell that is wanted; kNone
    // when there is none.
    struct Search {
        std::uint32_t start = 0, steps = kNone;
        bool forward = true;
        std::span<const std::int32_t> columns;
    };
    std::uint32_t Find(const Search& search, const std::function<bool(std::string_view)>& wanted) const;
    std::vector<std::uint32_t> ShownRecords() const;

    const RowRanges& Selection() const { return m_selected; }
    // What the user does: what is hidden is no longer selected.
    void SelectRows(std::uint32_t begin, std::uint32_t end, bool on);
    // The record gets the focus, too.
    void SelectOnly(std::uint32_t record);
    void Deselect(std::uint32_t record);
    std::vector<std::uint32_t> SelectedRecords(std::uint32_t most = kNone) const; // from the top
    std::uint32_t Focused() const { return ShownRowOf(m_focused) == kNone ? kNone : m_focused; }
    void Focus(std::uint32_t record) { m_focused = ShownRowOf(record) == kNone ? kNone : record; }

private:
    bool IsSorted() const { return !m_sort.IsNatural(); }
    bool IsFiltered() const { return HasFilters() || m_ownerFilter; }
    bool Passes(std::uint32_t record) const;
    void DropThatFail(const ColumnFilter& filter, std::vector<std::uint32_t>& records) const;
    // Puts a record among the shown ones, or takes it from them; both answer the row.
    std::uint32_t Show(std::uint32_t record);
    std::uint32_t Hide(std::uint32_t record);
    // Changes filters or sort, and finds the shown rows, the selection and the focus anew.
    template <class Operation>
    ListChange Rearrange(Operation&& operation);
    std::vector<std::uint32_t> ShowAnew();
    void SelectAnew(std::span<const std::uint32_t> shown);

    bool IsHiddenSelected(std::uint32_t record) const {
        return record < m_hiddenSelected.size() && m_hiddenSelected[record];
    }
    void SetHiddenSelected(std::uint32_t record, bool on);
    // The bookkeeping of selection and focus around a shown row that comes or goes.
    void RowCame(std::uint32_t record, std::uint32_t row);
    void RowWent(std::uint32_t record, std::uint32_t row);

    CellSource& m_source;
    RowOrder m_order;
    SortOrder m_sort;
    std::vector<std::unique_ptr<const ColumnFilter>> m_filters;
    std::unique_ptr<const ColumnFilter> m_ownerFilter;
    // The shown rows: with a sort these; else with a filter these bits, one a slot; else all.
    SortedRows m_sorted;
    RankedBits m_passing;
    RowRanges m_selected;               // of shown rows
    std::vector<bool> m_hiddenSelected; // by record
    std::uint32_t m_focused = kNone;    // has the focus again when a filter no longer hides it
};

} // namespace korvex

// All rows of a list, and which of them are shown: those that pass the filters, in the order of the sort.
#pragma once

#include "host/korvexcontrols/model/ColumnFilter.h"
#include "host/korvexcontrols/model/RowOrder.h"
#include "host/korvexcontrols/model/SortOrder.h"
#include "host/korvexcontrols/model/SortedRows.h"

#include <functional>

namespace korvex {

class ListRows {
public:
    explicit ListRows(CellSource& source) : m_source(source), m_sort(source, m_order) {}
    ListRows(const ListRows&) = delete;
    ListRows& operator=(const ListRows&) = delete;

    const RowOrder& All() const { return m_order; }
    std::uint32_t ShownCount() const {
        if (IsSorted()) return m_sorted.Count();
        return IsFiltered() ? m_passing.Count() : m_order.Count();
    }
    std::uint32_t ShownAt(std::uint32_t row) const;       // kNone behind the last
    std::uint32_t ShownRowOf(std::uint32_t record) const; // kNone when it is not shown
    std::vector<std::uint32_t> ShownRecords() const;

    // The shown row of a new record, or what it was of one that goes; kNone when a filter hides it.
    std::uint32_t InsertFront(std::uint32_t record);
    std::uint32_t Remove(std::uint32_t record);
    void RemoveAll();
    // Where a record whose cells have changed was shown, and where it is now.
    struct Move {
        std::uint32_t from, to;
    };
    Move Update(std::uint32_t record);

    const RowFilters& Filters() const { return m_filters; }
    const std::vector<SortColumn>& Sort() const { return m_sort.Columns(); }
    // A change of these shows with Arrange.
    RowFilters& Filters() { return m_filters; }
    void SetSort(std::vector<SortColumn> columns) { m_sort.SetColumns(std::move(columns)); }
    void Arrange();

    // The first shown row, `steps` rows from `start` on and around the end, with a cell that is wanted; kNone
    // when there is none.
    struct Search {
        std::uint32_t start = 0, steps = kNone;
        bool forward = true;
        std::span<const std::int32_t> columns;
    };
    std::uint32_t Find(const Search& search, const std::function<bool(std::string_view)>& wanted) const;

private:
    bool IsSorted() const { return !m_sort.IsNatural(); }
    bool IsFiltered() const { return !m_filters.PassAll(); }
    // All records that pass the filters, the newest first.
    std::vector<std::uint32_t> Passing() const;
    // Puts a record among the shown ones, or takes it from them; both answer the row.
    std::uint32_t Show(std::uint32_t record);
    std::uint32_t Hide(std::uint32_t record);

    CellSource& m_source;
    RowOrder m_order;
    SortOrder m_sort;
    RowFilters m_filters;
    // The shown rows: with a sort these; else with a filter these bits, one a slot; else all.
    SortedRows m_sorted;
    RankedBits m_passing;
};

} // namespace korvex

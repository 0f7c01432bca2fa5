// The order of records by the cells of several columns: numbers and dates by value, what is none behind them;
// of text whole numbers and dates by value, then the others without the case of ASCII letters; and among equals
// the newest first.
//
// Each record has a key of its first column, eight bytes that compare as the cells do: a number in units of
// 1/10000; of a text what follows the prefix that all had when they were sorted, seven bytes and its length;
// and where cells of text had values, the value, or all of the text behind a bit. Cells are compared only where
// keys are equal.
#pragma once

#include "host/korvexcontrols/model/Cells.h"
#include "host/korvexcontrols/model/ColumnFilter.h"
#include "host/korvexcontrols/model/RowOrder.h"

#include <optional>
#include <utility>

namespace korvex {

struct SortColumn {
    std::int32_t column;
    bool descending = false;
    ValueType type = ValueType::text;
    bool operator==(const SortColumn&) const = default;
};

// What a click on a heading makes of a sort: ascending, descending, natural. `adding` keeps the other columns.
std::vector<SortColumn> AfterClick(std::vector<SortColumn> columns, std::int32_t column, ValueType type,
                                   bool adding);

class SortOrder {
public:
    SortOrder(CellSource& source, const RowOrder& arrival) : m_source(source), m_arrival(arrival) {}

    bool IsNatural() const { return m_columns.empty(); }
    const std::vector<SortColumn>& Columns() const { return m_columns; }
    void SetColumns(std::vector<SortColumn> columns) { m_columns = std::move(columns); }

    // Sorts records that stand newest first, and answers their keys in the same order.
    std::vector<std::uint64_t> Sort(std::vector<std::uint32_t>& records);
    // The record is new, or its cells have changed.
    std::uint64_t MakeKey(std::uint32_t record);

    // One record beside others with the same key. Its cells are asked for once.
    class Probe {
    public:
        Probe(SortOrder& order, std::uint32_t record)
            : m_order(order), m_record(record), m_cells(order.m_columns.size()) {}
        bool StandsBefore(std::uint32_t other);

    private:
        std::string_view OwnCell(std::size_t level);

        SortOrder& m_order;
        std::uint32_t m_record;
        std::vector<std::optional<std::string_view>> m_cells;
    };

private:
    struct Item {
        std::uint64_t key;
        std::uint32_t record;
    };

    // It says what the keys of a run leave open.
    struct Made {
        bool exact = true;      // equal keys mean equal cells
        bool hasValues = false; // cells of text have
        std::size_t behind = 0; // of texts: the first place that no key holds
    };

    // The records' cells agree in the columns before `level`, and in that one before `offset`.
    void SortRun(std::span<Item> items, std::size_t level, std::size_t offset);
    void SortByCells(std::span<Item> items, std::size_t level);
    // Hands the items' cells over in their order.
    template <class Take>
    void ForCells(std::span<const Item> items, std::int32_t column, Take&& take);
    bool MakeNumberKeys(std::span<Item> items, const SortColumn& by);
    Made MakeKeys(std::span<Item> items, std::size_t level, std::size_t offset);
    std::span<Item> SortByKey(std::span<Item> items);
    void SortTies(std::span<Item> items, std::size_t level, const Made& made);
    Made MakeTextKeys(std::span<Item> items, std::size_t level, std::size_t offset);
    std::uint64_t TextKey(std::string_view cell) const;

    CellSource& m_source;
    const RowOrder& m_arrival;
    std::vector<SortColumn> m_columns;
    std::string m_prefix;     // of the first column's texts
    bool m_hasValues = false; // some of them
    bool m_exact = true;      // equal keys mean equal cells
    std::vector<Item> m_spare;
};

} // namespace korvex

// A list without its window: the order of the rows, what of them is shown, selection and focus.
//
// "Rows" are all rows, 0 the newest; "shown rows" are those of the screen. Selection and focus belong to
// records. A selected record that a filter hides is remembered and selected again when it comes back, unless
// the user has selected anew meanwhile.
#pragma once

#include "host/korvexcontrols/model/RowOrder.h"
#include "host/korvexcontrols/model/RowRanges.h"

#include <span>
#include <string_view>

namespace korvex {

// The cells of records in one column; they hold until the record changes.
class CellSource {
public:
    virtual void Cells(std::span<const std::uint32_t> records, std::int32_t column,
                       std::string_view* texts) = 0;

protected:
    ~CellSource() = default;
};

// What an operation did to the shown rows.
struct Change {
    enum Kind { nothing, inserted, removed, moved, repainted, everything };

    Kind kind = nothing;
    std::uint32_t row = 0; // before the change; of an insertion the new one
    std::uint32_t to = 0;  // where a moved row is now

    bool operator==(const Change&) const = default;
};

class ListModel {
public:
    explicit ListModel(CellSource& source) : m_source(source) {}

    // A record that stands already is repainted; an unknown one changes nothing.
    Change InsertFront(std::uint32_t record);
    Change Remove(std::uint32_t record);
    Change RemoveAll();
    Change Repaint(std::uint32_t record);

    bool Contains(std::uint32_t record) const { return m_order.Contains(record); }
    std::uint32_t RowCount() const { return m_order.Count(); }
    std::uint32_t RecordAt(std::uint32_t row) const { return row < RowCount() ? m_order.RecordAt(row) : kNone; }
    std::uint32_t IndexOf(std::uint32_t record) const {
        return Contains(record) ? m_order.RowOf(record) : kNone;
    }

    std::uint32_t ShownCount() const;
    std::uint32_t ShownAt(std::uint32_t row) const;       // kNone behind the last
    std::uint32_t ShownRowOf(std::uint32_t record) const; // kNone when it is not shown

    const RowRanges& Selection() const { return m_selected; }
    // What the user does: what is hidden is no longer selected.
    void SelectRows(std::uint32_t begin, std::uint32_t end, bool on);
    // With the focus.
    void SelectOnly(std::uint32_t record);
    void Deselect(std::uint32_t record);
    std::vector<std::uint32_t> SelectedRecords(std::uint32_t most = kNone) const; // from the top
    std::uint32_t Focused() const { return m_focused; }
    void Focus(std::uint32_t record) { m_focused = ShownRowOf(record) == kNone ? kNone : record; }

private:
    bool IsHiddenSelected(std::uint32_t record) const {
        return record < m_hiddenSelected.size() && m_hiddenSelected[record];
    }
    void SetHiddenSelected(std::uint32_t record, bool on);
    // The bookkeeping of selection and focus around a shown row that comes or goes.
    void RowCame(std::uint32_t record, std::uint32_t row);
    void RowWent(std::uint32_t record, std::uint32_t row);

    CellSource& m_source;
    RowOrder m_order;
    RowRanges m_selected;               // of shown rows
    std::vector<bool> m_hiddenSelected; // by record
    std::uint32_t m_focused = kNone;    // a shown record
};

} // namespace korvex

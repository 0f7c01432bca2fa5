// The shared list: a report list of the system over records that its owner keeps. The list knows records by
// number, asks for their cells, and holds the order of the rows, filters, sort and selection.
//
// A record's number is chosen by the owner (small and dense: arrays are indexed by it). Row 0 is the newest
// record; "all rows" is that order, "shown rows" is what filters and sort leave of it on the screen.
//
// Thread: the GUI thread. Nothing throws across.
//
// Example, a list of two columns over a vector of orders (`this` is its CListOwner):
//
//     const KorvexColumn columns[] = {{"Client ID", 80, 0, korvex::ValueType::text},
//                                     {"Amount", 70, 1, korvex::ValueType::amount}};
//     if (!m_list.Attach({GetDlgItem(dialog, 1201), "Orders", this, columns, 2, 26400})) return false;
//     m_orders.push_back(order);
//     m_list.InsertFront(static_cast<std::uint32_t>(m_orders.size() - 1));
//     ...
//     case WM_NOTIFY: // of the dialog
//         if (m_list.HandleNotify(reinterpret_cast<NMHDR*>(lParam), &result)) return result;
#pragma once

#include "sdk/HostWindow.h"
#include "sdk/korvex/CommonListCtrl.h"
#include "sdk/korvex/ValueType.h"

#include <cstdint>

class CFilterListCtrl;

// Characters of a cell, valid until the owner changes the record.
struct KorvexText {
    const char* data;
    std::uint32_t length;
};

struct KorvexColumn {
    const char* heading;
    std::int32_t width;        // pixels at 96 DPI and 8 points
    std::int32_t rightAligned; // 0 or 1
    korvex::ValueType valueType;
};

// How a row is drawn. Only a help to the eye: what it says stands in a cell as well. System colours in high
// contrast.
enum KorvexRowLook : std::int32_t {
    kKorvexPlain = 0,
    kKorvexMuted = 1,     // ended
    kKorvexAttention = 2, // waits for somebody
    kKorvexGood = 3,
    kKorvexBad = 4,
};

// Rows that the user asked for show themselves at the top of a list that is not scrolled; others leave the row
// under the mouse where it is.
enum KorvexArrival : std::int32_t { kKorvexUnasked = 0, kKorvexAsked = 1 };

class CListOwner {
public:
    // The cells of `count` records in one column, into `texts`.
    virtual void CellTexts(const std::uint32_t* records, std::uint32_t count, std::int32_t column,
                           KorvexText* texts) noexcept = 0;
    virtual std::int32_t RowLook(std::uint32_t record) noexcept = 0;
    // After every change of what is shown: an insertion, a removal, a repaint, a filter, a sort.
    virtual void ShownRowsChanged(CFilterListCtrl* list) noexcept = 0;

protected:
    ~CListOwner() = default;
};

class KORVEX_API CFilterListCtrl : public CCommonListCtrl {
public:
    struct Args {
        HostWindow list;  // a SysListView32 in report style with LVS_OWNERDATA
        const char* name; // under which columns and widths are remembered
        CListOwner* owner;
        const KorvexColumn* columns; // copied
        std::int32_t columnCount;
        std::uint32_t firstCommand; // of a hundred numbers for the entries of the list's own menus
    };

    CFilterListCtrl() noexcept;
    CFilterListCtrl(const CFilterListCtrl&) = delete;
    CFilterListCtrl& operator=(const CFilterListCtrl&) = delete;
    ~CFilterListCtrl();

    // Makes the columns (as the user left them) and takes the control over, until its window ends. False when
    // the system refuses.
    bool Attach(const Args& args) noexcept;
    HostWindow Handle() const noexcept;

    // Rows. An unknown record is ignored; one that stands already is repainted.
    // The row takes the focus, unselected, without scrolling.
    void InsertFront(std::uint32_t record, KorvexArrival arrival = kKorvexUnasked) noexcept;
    void Remove(std::uint32_t record) noexcept;
    void RemoveAll() noexcept;
    void Repaint(std::uint32_t record) noexcept; // its cells have changed: filters and sort are applied again
    bool Contains(std::uint32_t record) const noexcept;
    // Between the two the window is not touched; calls nest.
    void BeginChanges() noexcept;
    void EndChanges() noexcept;

    std::uint32_t RowCount() const noexcept;
    std::uint32_t RecordAt(std::uint32_t row) const noexcept;   // of all rows; UINT32_MAX behind the last
    std::uint32_t IndexOf(std::uint32_t record) const noexcept; // in all rows; UINT32_MAX when it has none
    std::uint32_t ShownCount() const noexcept;

    // Selection and focus, of shown rows.
    std::uint32_t SelectedCount() const noexcept;
    bool IsSelected(std::uint32_t record) const noexcept;
    // The first `capacity` selected records from the top; returns how many were written.
    std::uint32_t Selected(std::uint32_t* records, std::uint32_t capacity) const noexcept;
    std::uint32_t Focused() const noexcept;         // UINT32_MAX when none has it
    void SelectOnly(std::uint32_t record) noexcept; // with the focus, scrolled into view
    void Deselect(std::uint32_t record) noexcept;

    // A filter of the owner's: exact equality, beside the user's own filters. Null removes it.
    void SetOwnerFilter(std::int32_t column, const char* text) noexcept;

    // The list's own entries (copy, find, filters, sort, export), behind what the menu holds.
    void AppendMenuEntries(HostMenu menu) noexcept;
    // True when the command was one of the list's own.
    bool HandleCommand(std::uint32_t command) noexcept;
    // For WM_NOTIFY of the parent: true when the notification was the list's affair and `result` is its answer.
    bool HandleNotify(const HostNotification* notification, HostResult* result) noexcept;

private:
    friend struct KorvexExtrasAccess; // finds what sdk/korvex/ListExtras.h says

    class Impl;
    Impl* m_impl;
};

// What the plug-in's lists have in common over the shared filter list: their columns, what is selected, and the
// menu of their rows.
#pragma once

#include "framework/Subclass.h"
#include "plugin/base/LongRun.h"
#include "plugin/controls/Lists.h"
#include "sdk/korvex/ListExtras.h"
#include "sdk/korvex/QVBrickBar.h"

#include <windows.h>

#include <span>
#include <vector>

namespace planfold {

// Where the menu opens: at the mouse, or below the focused row when it was asked for by key. `position` is
// WM_CONTEXTMENU's.
POINT RowMenuPlace(HWND list, LPARAM position);
// Whether it was asked for on the headings, which have a menu of their own.
bool IsOnHeadings(HWND list, LPARAM position);

// Makes the window wide enough for all columns of its list and the scroll bar, as far as the screen is.
void ShowAllColumns(HWND window, HWND list);

// Shows a text in each part of the bar, which is as wide as its text; the last takes the rest. `letter` is the
// width of one in pixels.
void ShowParts(CQVBrickBar& bar, std::span<const std::string> texts, LONG letter);

// The menu of a list's rows: the plug-in's entries, and between two separators the list's own.
class RowMenu {
public:
    // Returns when the menu has been left; the choice comes to `parent` as a command. `several` stand with the
    // list's own entries, which stand alone where the plug-in has none.
    void Open(HWND parent, POINT at, CFilterListCtrl& list, std::span<const MenuEntry> entries,
              std::span<const MenuEntry> several = {});
    // The same of a list without entries of its own.
    void Open(HWND parent, POINT at, std::span<const MenuEntry> entries);
    // The parent is being destroyed: the menu's loop would wait for a choice that nobody gets.
    void Close() const;

private:
    void Track(HWND parent, POINT at, HMENU menu);

    bool m_open = false;
};

// `Column` has a heading, a width, an alignment and a value type.
template <class Column>
std::vector<KorvexColumn> ListColumns(std::span<const Column> columns) {
    std::vector<KorvexColumn> result;
    for (const Column& column : columns)
        result.push_back({column.heading, column.width, column.align == Align::right, column.type});
    return result;
}

// What the list does besides; null where its library does not know it.
KorvexListExtras* ExtrasOf(CFilterListCtrl& list);
// Gives the last text column what room the others leave, where the list can.
void StretchLastText(CFilterListCtrl& list);
// Place and size of its window come back, and are kept, where the list can.
void KeepWindow(CFilterListCtrl& list);

// The shown, selected records from the top.
std::vector<RecordId> SelectedRecords(const CFilterListCtrl& list);
RecordId FirstSelectedRecord(const CFilterListCtrl& list); // kNoRecord when none is

// Lets Enter reach a list in a dialog, so that it activates the row instead of pressing the default button.
class ActivateOnEnter final : public framework::Subclass {
private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};

} // namespace planfold

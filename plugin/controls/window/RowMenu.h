// The menu of a list's rows: the plug-in's entries, and between two separators the list's own.
#pragma once

#include "plugin/controls/MenuEntry.h"
#include "sdk/korvex/FilterListCtrl.h"

#include <windows.h>

#include <span>

namespace planfold {

// Where the menu opens: at the mouse, or below the focused row when it was asked for by key. `position` is
// WM_CONTEXTMENU's.
POINT RowMenuPlace(HWND list, LPARAM position);
// Whether it was asked for on the headings, which have a menu of their own.
bool IsOnHeadings(HWND list, LPARAM position);

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

} // namespace planfold

// The shared splitter: a bar between an upper and a lower pane of its parent, moved with the mouse or, having
// the focus, by Up, Down, Home and End; a double click puts it back. It stays where the user left it, also in
// the next session.
//
// The parent places its panes itself: it calls Place when its own size changes, and puts the panes into First
// and Second then and whenever the bar sends it WM_NOTIFY with kKorvexSplitterMoved.
//
// Thread:   the GUI thread. Nothing throws across.
// Owner:    the object is its maker's; its window belongs to the parent and goes with it.
// Failure:  false from Create; without a window both panes are empty.
//
// Example, with the list above and the chart below:
//
//     splitter.Create({dialog, list, 1302, "SIPOrderHistory", 45, 60, 140});
//     splitter.Place(area);
//     Move(list, splitter.First());
//     Move(chart, splitter.Second());
#pragma once

#include "sdk/HostWindow.h"
#include "sdk/korvex/CommonListCtrl.h"

#include <cstdint>

// The code of the notification that tells the parent of a move.
constexpr std::uint32_t kKorvexSplitterMoved = 0x4B01;

class KORVEX_API CFlatSplitterWnd {
public:
    struct Args {
        HostWindow parent;
        HostWindow behind; // the control that it follows in the tab order
        std::int32_t id;
        const char* name;        // under which the place is remembered
        std::int32_t firstShare; // of a hundred, for the upper pane, until the user moves the bar
        std::int32_t firstLeast; // height, in pixels at 96 DPI
        std::int32_t secondLeast;
    };

    CFlatSplitterWnd() noexcept;
    CFlatSplitterWnd(const CFlatSplitterWnd&) = delete;
    CFlatSplitterWnd& operator=(const CFlatSplitterWnd&) = delete;
    ~CFlatSplitterWnd();

    // False when the system refuses. Its window lives as long as the parent's; then it may be created again.
    bool Create(const Args& args) noexcept;
    HostWindow Handle() const noexcept;

    // Shares the area, in the parent's coordinates, among both panes and the bar. Tells nobody.
    void Place(const HostRect& area) noexcept;
    // Where the panes go, in the parent's coordinates.
    HostRect First() const noexcept;
    HostRect Second() const noexcept;

private:
    class Impl;
    Impl* m_impl;
};

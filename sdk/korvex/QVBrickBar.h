// The shared status bar: a row of panes with a text each, at the bottom of its parent.
//
// Thread:   the GUI thread. Nothing throws across.
// Owner:    the object is its maker's; its window belongs to the parent and goes with it. The object stays, and
// Create
//           may be called again.
// Failure:  false from Create; every other call on a bar without a window does nothing.
//
// Example:
//
//     bar.Create(dialog, 1203, "SIPRegistrationBook");
//     const std::int32_t edges[] = {120, 240, -1};
//     bar.SetParts(edges, 3);
//     bar.SetText(0, "147");
#pragma once

#include "sdk/HostWindow.h"
#include "sdk/korvex/CommonListCtrl.h"

#include <cstdint>

class KORVEX_API CQVBrickBar {
public:
    CQVBrickBar() noexcept;
    CQVBrickBar(const CQVBrickBar&) = delete;
    CQVBrickBar& operator=(const CQVBrickBar&) = delete;
    // Lets the window go on without the object.
    ~CQVBrickBar();

    // `id` is the control's identifier in the parent, `name` its accessible name. False when the system
    // refuses.
    bool Create(HostWindow parent, std::int32_t id, const char* name) noexcept;
    // An msctls_statusbar32; null before Create and after the parent's end.
    HostWindow Handle() const noexcept;

    // The right edge of each pane, in pixels of the window's own DPI, from left to right; -1 is the bar's own
    // edge.
    void SetParts(const std::int32_t* edges, std::int32_t count) noexcept;
    // `pane` counts from 0. Cheap at any rate: what is set between two looks at the bar is shown once.
    void SetText(std::int32_t pane, const char* text) noexcept;
    // Goes to the bottom again: after the parent's size or the font has changed.
    void Place() noexcept;

private:
    class Impl;
    Impl* m_impl;
};

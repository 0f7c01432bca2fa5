// The shared status bar: a row of panes with a text each.
//
// Thread: the GUI thread. Nothing throws across.
#pragma once

#include "host/korvexcontrols/CommonListCtrl.h"

#include <windows.h>

#include <cstdint>

class KORVEX_API CQVBrickBar {
public:
    CQVBrickBar() noexcept;
    CQVBrickBar(const CQVBrickBar&) = delete;
    CQVBrickBar& operator=(const CQVBrickBar&) = delete;
    ~CQVBrickBar();

    // At the bottom of the parent. False when the system refuses. Its window lives as long as the parent's.
    bool Create(HWND parent, std::int32_t id, const char* name) noexcept;
    HWND Handle() const noexcept;

    // The right edge of each pane, in pixels; -1 is the bar's own.
    void SetParts(const std::int32_t* edges, std::int32_t count) noexcept;
    // Cheap at any rate: what is set between two looks at the bar is shown once.
    void SetText(std::int32_t pane, const char* text) noexcept;
    // Goes to the bottom again, after the parent's size or the font has changed.
    void Place() noexcept;

private:
    class Impl;
    Impl* m_impl;
};

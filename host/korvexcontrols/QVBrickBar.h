// The status bar under a list: panes with texts.
//
// Thread: the GUI thread. Nothing throws across.
#pragma once

#include "host/korvexcontrols/CommonListCtrl.h"

#include <windows.h>

#include <cstdint>

class KORVEX_API CQVBrickBar {
public:
    // Takes over a status bar of the system; the name stands in the first pane until that has a text.
    void Attach(HWND bar, const char* name) noexcept;
    HWND Handle() const noexcept { return m_bar; }

    // Widths in pixels at 96 DPI, from the left; -1 takes what is left.
    void SetParts(const std::int32_t* widths, std::int32_t count) noexcept;
    // Nothing is drawn when the pane shows the text already.
    void SetText(std::int32_t pane, const char* text) noexcept;

private:
    HWND m_bar = nullptr;
};

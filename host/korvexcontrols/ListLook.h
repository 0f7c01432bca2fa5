// The colours of rows.
#pragma once

#include "sdk/korvex/FilterListCtrl.h"

#include <windows.h>

#include <commctrl.h>

namespace korvex {

// Colours the row that is about to be drawn; nothing in high contrast.
void ColourRow(NMLVCUSTOMDRAW& draw, std::int32_t look);

} // namespace korvex

// Paints the chart of the order history into a rectangle, in the system's colours, at any resolution.
#pragma once

#include "plugin/history/HistoryChart.h"

#include <windows.h>

namespace planfold {

// At once, as one picture: nothing flickers. `font` is for all texts.
void PaintHistoryChart(HDC target, const RECT& area, HFONT font, UINT dpi, const HistoryChart& chart);

} // namespace planfold

// Paints a chart of bars into a rectangle, in the system's colours, at any resolution.
#pragma once

#include "plugin/history/HistoryChart.h"

#include <windows.h>

namespace planfold {

// At once, as one picture: nothing flickers. `font` is for all texts.
void PaintBarChart(HDC target, const RECT& area, HFONT font, UINT dpi, const BarChart& chart);

} // namespace planfold

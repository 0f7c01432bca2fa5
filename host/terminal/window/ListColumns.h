// What the terminal's two lists have in common: owner-data report lists with columns from a table.
#pragma once

#include "framework/Window.h"

#include <span>
#include <string>

namespace vesk {

struct ListColumn {
    const char* heading;
    int width; // pixels at 96 DPI
    int format = LVCFMT_LEFT;
};

// A child list of `parent` with these columns; null when the system refuses.
HWND CreateReportList(HWND parent, int id, std::span<const ListColumn> columns);
void ScaleColumns(HWND list, std::span<const ListColumn> columns, UINT dpi);
// Hands the text to a list that asks for it.
void AnswerText(LVITEMA& item, const std::string& text);

} // namespace vesk

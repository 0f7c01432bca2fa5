// What the terminal's two lists have in common: owner-data report lists with columns from a table.
#pragma once

#include "framework/Window.h"

#include <span>
#include <string>

namespace vesk {

struct ListColumn {
    const char* heading;
    int width; // pixels at 96 DPI and the usual font size
    int format = LVCFMT_LEFT;
    bool stretch = false; // takes what the others leave
};

// How large the terminal's own texts are shown.
struct TextScale {
    UINT dpi = USER_DEFAULT_SCREEN_DPI;
    int points = kUsualPoints;

    static constexpr int kUsualPoints = 9;
    int Pixels(int atUsualSize) const {
        return MulDiv(atUsualSize, static_cast<int>(dpi) * points, USER_DEFAULT_SCREEN_DPI * kUsualPoints);
    }
};

// A child list of `parent` with these columns; null when the system refuses.
HWND CreateReportList(HWND parent, int id, std::span<const ListColumn> columns);
// Fits columns and row height to the scale and to the list's present width.
void FitColumns(HWND list, std::span<const ListColumn> columns, const TextScale& scale);
// Hands the text to a list that asks for it.
void AnswerText(LVITEMA& item, const std::string& text);

} // namespace vesk

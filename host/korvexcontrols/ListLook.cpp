#include "host/korvexcontrols/ListLook.h"

namespace korvex {
namespace {

struct Colours {
    COLORREF text, background; // CLR_DEFAULT: the list's own
};
struct Look {
    std::int32_t look;
    Colours onLight, onDark;
};
constexpr Look kLooks[] = {
    {kKorvexMuted, {RGB(104, 104, 104), CLR_DEFAULT}, {RGB(160, 160, 160), CLR_DEFAULT}},
    {kKorvexAttention, {RGB(92, 60, 0), RGB(255, 246, 219)}, {RGB(255, 221, 150), RGB(64, 50, 16)}},
    {kKorvexGood, {RGB(0, 92, 40), RGB(234, 248, 238)}, {RGB(150, 230, 175), RGB(16, 54, 32)}},
    {kKorvexBad, {RGB(150, 20, 20), RGB(255, 236, 236)}, {RGB(255, 170, 165), RGB(70, 22, 22)}},
};

bool IsHighContrast() {
    HIGHCONTRASTA contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0)
           && (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

// The list's own background, which may not be the system's.
bool IsDark(HWND list) {
    const auto own = static_cast<COLORREF>(SendMessageA(list, LVM_GETBKCOLOR, 0, 0));
    const COLORREF colour = own == CLR_NONE ? GetSysColor(COLOR_WINDOW) : own;
    constexpr int half = 128 * 1000;
    return GetRValue(colour) * 299 + GetGValue(colour) * 587 + GetBValue(colour) * 114 < half;
}

} // namespace

void ColourRow(NMLVCUSTOMDRAW& draw, std::int32_t look) {
    for (const Look& known : kLooks) {
        if (known.look != look || IsHighContrast()) continue;
        const Colours& colours = IsDark(draw.nmcd.hdr.hwndFrom) ? known.onDark : known.onLight;
        draw.clrText = colours.text;
        if (colours.background != CLR_DEFAULT) draw.clrTextBk = colours.background;
    }
}

} // namespace korvex

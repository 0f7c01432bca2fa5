#include "framework/Colours.h"

namespace framework {

namespace {

struct Row {
    Meaning meaning;
    Colours onLight, onDark;
};
constexpr Row kRows[] = {
    {Meaning::muted, {RGB(104, 104, 104), CLR_DEFAULT}, {RGB(160, 160, 160), CLR_DEFAULT}},
    {Meaning::attention, {RGB(92, 60, 0), RGB(255, 246, 219)}, {RGB(255, 221, 150), RGB(64, 50, 16)}},
    {Meaning::good, {RGB(0, 92, 40), RGB(234, 248, 238)}, {RGB(150, 230, 175), RGB(16, 54, 32)}},
    {Meaning::bad, {RGB(150, 20, 20), RGB(255, 236, 236)}, {RGB(255, 170, 165), RGB(70, 22, 22)}},
};

bool IsDark(COLORREF colour) {
    constexpr int half = 128 * 1000;
    return GetRValue(colour) * 299 + GetGValue(colour) * 587 + GetBValue(colour) * 114 < half;
}

} // namespace

bool IsHighContrast() {
    HIGHCONTRASTA contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0)
           && (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

Colours ColoursOf(Meaning meaning, COLORREF windowBackground) {
    for (const Row& row : kRows)
        if (row.meaning == meaning && !IsHighContrast())
            return IsDark(windowBackground) ? row.onDark : row.onLight;
    return {};
}

void ColorStatic::Tell(const std::string& text, Meaning meaning) {
    const Window control(Handle());
    if (meaning == m_meaning && control.Text() == text) return;
    m_meaning = meaning;
    control.SetText(text);
    InvalidateRect(Handle(), nullptr, TRUE);
}

std::optional<LRESULT> ColorStatic::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kReflected + WM_CTLCOLORSTATIC) return std::nullopt;
    const COLORREF text = ColoursOf(m_meaning, GetSysColor(COLOR_BTNFACE)).text;
    if (text == CLR_DEFAULT) return std::nullopt;
    const LRESULT brush = DefWindowProcA(GetParent(Handle()), WM_CTLCOLORSTATIC, wParam, lParam);
    SetTextColor(reinterpret_cast<HDC>(wParam), text);
    return brush;
}

} // namespace framework

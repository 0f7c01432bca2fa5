#include "framework/DialogLayout.h"

#include <algorithm>
#include <utility>

namespace framework {

namespace {

RECT ToPixels(const RECT& units, SIZE base) {
    const auto x = [&](LONG value) { return MulDiv(value, base.cx, 4); };
    const auto y = [&](LONG value) { return MulDiv(value, base.cy, 8); };
    return {x(units.left), y(units.top), x(units.right), y(units.bottom)};
}

RECT WorkArea(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcWork;
}

// A combo makes its own height, of its text alone; beside edits of the template's height it would look low.
void MatchEditHeight(HWND control, SIZE base) {
    constexpr LONG editUnits = 13;
    char className[16] = "";
    GetClassNameA(control, className, sizeof className);
    if (std::string_view(className) != WC_COMBOBOXA) return;
    constexpr auto field = static_cast<WPARAM>(-1);
    RECT place{};
    GetWindowRect(control, &place);
    const LRESULT text = SendMessageA(control, CB_GETITEMHEIGHT, field, 0);
    const LRESULT frame = place.bottom - place.top - text;
    SendMessageA(control, CB_SETITEMHEIGHT, field, MulDiv(editUnits, base.cy, 8) - frame);
}

} // namespace

Font MakeFont(const std::wstring& face, int points, UINT dpi) {
    LOGFONTW font{};
    font.lfHeight = -MulDiv(points, static_cast<int>(dpi), 72);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    face.copy(font.lfFaceName, LF_FACESIZE - 1);
    return Font(CreateFontIndirectW(&font));
}

SIZE BaseUnits(HFONT font) {
    static constexpr wchar_t letters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const HDC screen = GetDC(nullptr);
    const HGDIOBJ previous = SelectObject(screen, font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(screen, &metrics);
    SIZE extent{};
    GetTextExtentPoint32W(screen, letters, 52, &extent);
    SelectObject(screen, previous);
    ReleaseDC(nullptr, screen);
    return {std::max<LONG>((extent.cx / 26 + 1) / 2, 1), std::max<LONG>(metrics.tmHeight, 1)};
}

SIZE DialogLayout::FrameSize(HWND dialog, SIZE base, UINT dpi) const {
    RECT frame = ToPixels({0, 0, m_template.units.cx, m_template.units.cy}, base);
    AdjustWindowRectExForDpi(&frame, static_cast<DWORD>(GetWindowLongA(dialog, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongA(dialog, GWL_EXSTYLE)), dpi);
    return {frame.right - frame.left, frame.bottom - frame.top};
}

void DialogLayout::Apply(HWND dialog, int points, UINT dpi) {
    Font font = MakeFont(m_template.face, points, dpi);
    const SIZE base = BaseUnits(font.Get());
    const RedrawHold hold(dialog);
    Window(dialog).SetFont(font.Get());
    for (const DialogTemplate::Item& item : m_template.items) {
        const Window control(GetDlgItem(dialog, item.id));
        control.SetFont(font.Get());
        control.Move(ToPixels(item.units, base));
        MatchEditHeight(control.Handle(), base);
    }
    m_font = std::move(font);
    ResizeFrame(dialog, FrameSize(dialog, base, dpi));
}

void DialogLayout::ResizeFrame(HWND dialog, SIZE size) {
    // Of a minimised or maximised dialog it is the place that it comes back to.
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    const bool away = (IsIconic(dialog) || IsZoomed(dialog)) && GetWindowPlacement(dialog, &placement);
    RECT place = placement.rcNormalPosition;
    if (!away) GetWindowRect(dialog, &place);
    const RECT work = WorkArea(dialog);
    const LONG left = std::max(work.left, std::min(place.left, work.right - size.cx));
    const LONG top = std::max(work.top, std::min(place.top, work.bottom - size.cy));
    placement.rcNormalPosition = {left, top, left + size.cx, top + size.cy};
    if (away)
        SetWindowPlacement(dialog, &placement);
    else
        Window(dialog).Move(placement.rcNormalPosition);
}

} // namespace framework

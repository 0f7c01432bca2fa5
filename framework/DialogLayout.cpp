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

constexpr int kLeastPoints = 6;

// Or one that looks like it.
bool HasFont(HWND control, HFONT font) {
    LOGFONTW has{};
    LOGFONTW wanted{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)), sizeof has, &has);
    GetObjectW(font, sizeof wanted, &wanted);
    return has.lfHeight == wanted.lfHeight && std::wstring_view(has.lfFaceName) == wanted.lfFaceName;
}

bool IsCombo(HWND control) {
    char className[16] = "";
    GetClassNameA(control, className, sizeof className);
    return std::string_view(className) == WC_COMBOBOXA;
}

// A combo's place is that of its list as well, which shows only its upper part.
bool IsAt(HWND control, const RECT& place, bool isCombo) {
    RECT now{};
    GetWindowRect(control, &now);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&now), 2);
    if (isCombo) now.bottom = place.bottom;
    return EqualRect(&now, &place) != FALSE;
}

// A combo makes its own height, of its text alone; beside edits of the template's height it would look low.
void MatchEditHeight(HWND control, SIZE base) {
    constexpr LONG editUnits = 13;
    constexpr auto field = static_cast<WPARAM>(-1);
    RECT place{};
    GetWindowRect(control, &place);
    const LRESULT text = SendMessageA(control, CB_GETITEMHEIGHT, field, 0);
    const LRESULT frame = place.bottom - place.top - text;
    SendMessageA(control, CB_SETITEMHEIGHT, field, MulDiv(editUnits, base.cy, 8) - frame);
}

} // namespace

RECT WorkArea(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcWork;
}

void ResizeOnScreen(HWND window, SIZE size) {
    // For a minimised or maximised window it is the place that it comes back to.
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    const bool away = (IsIconic(window) || IsZoomed(window)) && GetWindowPlacement(window, &placement);
    RECT place = placement.rcNormalPosition;
    if (!away) GetWindowRect(window, &place);
    const RECT work = WorkArea(window);
    const LONG width = std::min(size.cx, work.right - work.left);
    const LONG height = std::min(size.cy, work.bottom - work.top);
    const LONG left = std::clamp(place.left, work.left, work.right - width);
    const LONG top = std::clamp(place.top, work.top, work.bottom - height);
    placement.rcNormalPosition = {left, top, left + width, top + height};
    if (away)
        SetWindowPlacement(window, &placement);
    else
        Window(window).Move(placement.rcNormalPosition);
}

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

Font DialogLayout::LargestFont(HWND dialog, int points, UINT dpi) const {
    const RECT work = WorkArea(dialog);
    for (;; --points) {
        Font font = MakeFont(m_template.face, points, dpi);
        const SIZE frame = FrameSize(dialog, BaseUnits(font.Get()), dpi);
        const bool fits = frame.cx <= work.right - work.left && frame.cy <= work.bottom - work.top;
        if (fits || points <= kLeastPoints) return font;
    }
}

void DialogLayout::Apply(HWND dialog, int points, UINT dpi) {
    Font font = LargestFont(dialog, points, dpi);
    const SIZE base = BaseUnits(font.Get());
    const RedrawHold hold(dialog);
    // A dialog made in this font has most controls in place already, and each one moved is many messages.
    const bool fontChanges = std::ranges::any_of(m_template.items, [&](const DialogTemplate::Item& item) {
        return !HasFont(GetDlgItem(dialog, item.id), font.Get());
    });
    if (fontChanges) Window(dialog).SetFont(font.Get());
    for (const DialogTemplate::Item& item : m_template.items) {
        const Window control(GetDlgItem(dialog, item.id));
        const bool isCombo = IsCombo(control.Handle());
        const RECT place = ToPixels(item.units, base);
        if (fontChanges) control.SetFont(font.Get());
        if (fontChanges || !IsAt(control.Handle(), place, isCombo)) control.Move(place);
        if (isCombo) MatchEditHeight(control.Handle(), base);
    }
    if (fontChanges) m_font = std::move(font);
    ResizeOnScreen(dialog, FrameSize(dialog, base, dpi));
}

} // namespace framework

#include "plugin/controls/window/HeaderPainter.h"

#include "framework/Guard.h"

namespace planfold {

namespace {

constexpr int kPadding = 6; // pixels at 96 DPI
constexpr int kArrow = 4;

COLORREF Or(COLORREF own, int system) {
    return own == CLR_DEFAULT ? GetSysColor(system) : own;
}

void Fill(HDC dc, const RECT& place, COLORREF colour) {
    SetBkColor(dc, colour);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &place, nullptr, 0, nullptr);
}

} // namespace

HeaderPainter* HeaderPainter::Make() noexcept {
    return framework::Guard(static_cast<HeaderPainter*>(nullptr), [] { return new HeaderPainter; });
}

HeaderPainter::HeaderPainter() = default;

HeaderPainter::~HeaderPainter() {
    Detach();
}

bool HeaderPainter::Attach(HWND header) noexcept {
    Detach();
    const bool attached = m_header.Attach(header) && m_parent.Attach(GetParent(header));
    attached ? Redraw() : Detach();
    return attached;
}

void HeaderPainter::Detach() noexcept {
    Redraw();
    m_header.Detach();
    m_parent.Detach();
}

HWND HeaderPainter::Handle() const noexcept {
    return m_header.Handle();
}

void HeaderPainter::Set(int item, const framework::Colours& colours) noexcept {
    framework::Guard([&] { m_colours[item] = colours; });
    Redraw();
}

void HeaderPainter::Reset() noexcept {
    m_colours.clear();
    Redraw();
}

void HeaderPainter::Redraw() const {
    if (Handle()) InvalidateRect(Handle(), nullptr, TRUE);
}

HeaderPainter::Header::Header(HeaderPainter& owner) : m_owner(owner) {}
HeaderPainter::Header::~Header() = default;
HeaderPainter::Parent::Parent(HeaderPainter& owner) : m_owner(owner) {}
HeaderPainter::Parent::~Parent() = default;

void HeaderPainter::Header::OnGone() {
    m_owner.m_parent.Detach();
}

std::optional<LRESULT> HeaderPainter::Parent::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_NOTIFY) return std::nullopt;
    const auto& draw = *reinterpret_cast<const NMCUSTOMDRAW*>(lParam);
    if (draw.hdr.hwndFrom != m_owner.Handle() || draw.hdr.code != NM_CUSTOMDRAW) return std::nullopt;
    if (draw.dwDrawStage == CDDS_PREPAINT) return Default(message, wParam, lParam) | CDRF_NOTIFYITEMDRAW;
    if (draw.dwDrawStage != CDDS_ITEMPREPAINT || !m_owner.Draw(draw)) return std::nullopt;
    return CDRF_SKIPDEFAULT;
}

bool HeaderPainter::Draw(const NMCUSTOMDRAW& draw) const {
    const auto found = m_colours.find(static_cast<int>(draw.dwItemSpec));
    if (found == m_colours.end() || framework::IsHighContrast()) return false;
    wchar_t text[260] = L"";
    HDITEMW item{};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = text;
    item.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(Handle(), HDM_GETITEMW, draw.dwItemSpec, reinterpret_cast<LPARAM>(&item));

    const UINT dpi = framework::Window(Handle()).Dpi();
    const COLORREF colour = Or(found->second.text, COLOR_BTNTEXT);
    const int saved = SaveDC(draw.hdc);
    RECT place = draw.rc;
    Fill(draw.hdc, place, Or(found->second.background, COLOR_BTNFACE));
    Fill(draw.hdc, {place.right - 1, place.top, place.right, place.bottom}, GetSysColor(COLOR_BTNSHADOW));
    SetTextColor(draw.hdc, colour);
    SetBkMode(draw.hdc, TRANSPARENT);
    if (item.fmt & (HDF_SORTUP | HDF_SORTDOWN))
        DrawArrow(draw.hdc, place, (item.fmt & HDF_SORTUP) != 0, colour, dpi);
    InflateRect(&place, -framework::Scaled(kPadding, dpi), 0);
    if (draw.uItemState & CDIS_SELECTED) OffsetRect(&place, 1, 1); // pressed
    const int justify = item.fmt & HDF_JUSTIFYMASK;
    const UINT side = justify == HDF_RIGHT ? DT_RIGHT : justify == HDF_CENTER ? DT_CENTER : DT_LEFT;
    DrawTextW(draw.hdc, text, -1, &place, side | DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    RestoreDC(draw.hdc, saved);
    return true;
}

// The arrow stands at the top of the cell, where the system draws it.
void HeaderPainter::DrawArrow(HDC dc, const RECT& place, bool up, COLORREF colour, UINT dpi) {
    const int size = framework::Scaled(kArrow, dpi);
    const int middle = (place.left + place.right) / 2;
    for (int line = 0; line < size; ++line) {
        const int half = up ? line : size - 1 - line;
        const LONG top = place.top + 1 + line;
        Fill(dc, {middle - half, top, middle + half + 1, top + 1}, colour);
    }
}

} // namespace planfold

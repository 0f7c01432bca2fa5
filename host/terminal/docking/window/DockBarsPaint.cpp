// How the bars look: flat, in the system's colours, the buttons raised by the mouse.
#include "host/terminal/docking/window/DockBars.h"

namespace vesk {
namespace {

constexpr int kTextIndent = 8; // at 96 DPI
constexpr int kGlyphInset = 7;
constexpr int kLine = 1;

// `share` percent of the second colour.
COLORREF Blend(int base, int other, int share) {
    const COLORREF a = GetSysColor(base), b = GetSysColor(other);
    const auto mix = [share](int x, int y) { return static_cast<BYTE>((x * (100 - share) + y * share) / 100); };
    return RGB(mix(GetRValue(a), GetRValue(b)), mix(GetGValue(a), GetGValue(b)),
               mix(GetBValue(a), GetBValue(b)));
}

void Fill(HDC context, const RECT& rect, COLORREF colour) {
    SetDCBrushColor(context, colour);
    FillRect(context, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void DrawFrame(HDC context, const RECT& rect, COLORREF colour) {
    SetDCBrushColor(context, colour);
    FrameRect(context, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void DrawLabel(HDC context, RECT rect, const std::string& text, int indent) {
    rect.left += indent;
    rect.right -= indent / 2;
    DrawTextA(context, text.c_str(), static_cast<int>(text.size()), &rect,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
}

void DrawCross(HDC context, const RECT& box, int thickness) {
    const HPEN pen = CreatePen(PS_SOLID, thickness, GetSysColor(COLOR_BTNTEXT));
    const HGDIOBJ before = SelectObject(context, pen);
    MoveToEx(context, box.left, box.top, nullptr);
    LineTo(context, box.right, box.bottom);
    MoveToEx(context, box.right - 1, box.top, nullptr);
    LineTo(context, box.left - 1, box.bottom);
    DeleteObject(SelectObject(context, before));
}

// A small window with a caption of its own.
void DrawWindow(HDC context, const RECT& box, int thickness) {
    const COLORREF colour = GetSysColor(COLOR_BTNTEXT);
    for (int i = 0; i < thickness; ++i) {
        RECT edge = box;
        InflateRect(&edge, -i, -i);
        DrawFrame(context, edge, colour);
    }
    Fill(context, {box.left, box.top, box.right, box.top + 2 * thickness + 1}, colour);
}

} // namespace

void DockBars::Paint(HDC context, HFONT font) const {
    const HGDIOBJ before = SelectObject(context, font);
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
    const auto& groups = m_site.Layout().Groups();
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (!groups[i].bounds.Empty()) PaintGroup(context, groups[i], i);
    SelectObject(context, before);
}

void DockBars::PaintGroup(HDC context, const DockGroup& group, std::size_t index) const {
    const RECT caption = ToRect(group.caption);
    Fill(context, caption, Blend(COLOR_BTNFACE, COLOR_HIGHLIGHT, 25));
    RECT label = caption;
    label.right = group.floatButton.left;
    const DockPane* pane = m_site.Layout().Find(group.selected);
    DrawLabel(context, label, pane ? pane->caption : std::string(),
              framework::Scaled(kTextIndent, framework::Window(m_frame).Dpi()));
    PaintButton(context, group.floatButton, {DockHit::Part::floatButton, index, group.selected});
    PaintButton(context, group.closeButton, {DockHit::Part::closeButton, index, group.selected});
    PaintTabs(context, group);
}

void DockBars::PaintButton(HDC context, const DockRect& rect, const DockHit& self) const {
    const UINT dpi = framework::Window(m_frame).Dpi();
    RECT box = ToRect(rect);
    const bool hover = m_hover == self;
    if (m_pressed == self && hover)
        Fill(context, box, Blend(COLOR_BTNFACE, COLOR_HIGHLIGHT, 75));
    else if (hover)
        Fill(context, box, Blend(COLOR_BTNFACE, COLOR_HIGHLIGHT, 45));
    const int inset = MulDiv(rect.Height(), kGlyphInset, 24);
    InflateRect(&box, -inset, -inset);
    const int thickness = framework::Scaled(kLine, dpi);
    if (self.part == DockHit::Part::closeButton)
        DrawCross(context, box, thickness);
    else
        DrawWindow(context, box, thickness);
}

void DockBars::PaintTabs(HDC context, const DockGroup& group) const {
    const int indent = framework::Scaled(kTextIndent, framework::Window(m_frame).Dpi());
    for (const DockTab& tab : group.tabs) {
        const RECT rect = ToRect(tab.rect);
        const bool hover = m_hover.part == DockHit::Part::tab && m_hover.pane == tab.pane;
        const int base = tab.pane == group.selected ? COLOR_WINDOW : COLOR_BTNFACE;
        Fill(context, rect, Blend(base, COLOR_HIGHLIGHT, hover ? 20 : 0));
        DrawFrame(context, rect, GetSysColor(COLOR_BTNSHADOW));
        DrawLabel(context, rect, m_site.Layout().Find(tab.pane)->caption, indent);
    }
}

} // namespace vesk

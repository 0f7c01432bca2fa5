#include "plugin/history/window/ChartPainter.h"

#include "framework/Handle.h"
#include "framework/Window.h"

#include <algorithm>

namespace planfold {

namespace {

using framework::Scaled;

void ReleaseBrush(HBRUSH brush) {
    DeleteObject(brush);
}
void ReleasePen(HPEN pen) {
    DeleteObject(pen);
}
void ReleaseBitmap(HBITMAP bitmap) {
    DeleteObject(bitmap);
}
using Brush = framework::UniqueHandle<HBRUSH, ReleaseBrush>;
using Pen = framework::UniqueHandle<HPEN, ReleasePen>;
using Bitmap = framework::UniqueHandle<HBITMAP, ReleaseBitmap>;
using MemoryDc = framework::UniqueHandle<HDC, DeleteDC>;

// Lengths are pixels at 96 DPI.
constexpr int kGap = 6;
constexpr int kNarrowestPitch = 9; // narrower bars would show no hatch
constexpr int kWidestBar = 40;

// The hatch alone tells them apart as well.
struct Look {
    int colour;
    int hatch; // -1: solid
};
constexpr Look kLooks[] = {
    {COLOR_HIGHLIGHT, -1},
    {COLOR_HIGHLIGHT, HS_BDIAGONAL},
    {COLOR_WINDOW, -1},
    {COLOR_WINDOWTEXT, HS_DIAGCROSS},
};
static_assert(std::size(kLooks) == kChartPartCount);

class Painter {
public:
    Painter(HDC dc, const RECT& area, UINT dpi) : m_dc(dc), m_area(area), m_dpi(dpi), m_plot(area) {
        m_rowHeight = Extent("0").cy + Scaled(2, dpi);
    }

    void Paint(const BarChart& chart);

private:
    SIZE Extent(const std::string& text) const;
    void Text(int left, int top, const std::string& text) const;
    void Part(const RECT& place, std::size_t part) const;
    void Line(int y, int style, int colour) const;
    void Heading(const BarChart& chart, const std::vector<ChartBar>& bars);
    void Scale(const BarChart& chart, double top);
    void Bars(const std::vector<ChartBar>& bars, double top) const;
    void Dates(const std::vector<ChartBar>& bars) const;
    int Pitch(std::size_t bars, std::size_t at) const;

    HDC m_dc;
    RECT m_area;
    UINT m_dpi;
    RECT m_plot; // where the bars stand
    int m_rowHeight;
};

SIZE Painter::Extent(const std::string& text) const {
    SIZE extent{};
    GetTextExtentPoint32A(m_dc, text.data(), static_cast<int>(text.size()), &extent);
    return extent;
}

void Painter::Text(int left, int top, const std::string& text) const {
    TextOutA(m_dc, left, top, text.data(), static_cast<int>(text.size()));
}

void Painter::Part(const RECT& place, std::size_t part) const {
    const auto [colour, hatch] = kLooks[part];
    const COLORREF rgb = GetSysColor(colour);
    const Brush brush(hatch < 0 ? CreateSolidBrush(rgb) : CreateHatchBrush(hatch, rgb));
    const HGDIOBJ previous = SelectObject(m_dc, brush.Get());
    Rectangle(m_dc, place.left, place.top, place.right, place.bottom);
    SelectObject(m_dc, previous);
}

void Painter::Line(int y, int style, int colour) const {
    const Pen pen(CreatePen(style, 1, GetSysColor(colour)));
    const HGDIOBJ previous = SelectObject(m_dc, pen.Get());
    MoveToEx(m_dc, m_plot.left, y, nullptr);
    LineTo(m_dc, m_plot.right, y);
    SelectObject(m_dc, previous);
}

// The legend stands behind it, in as many rows as it needs.
void Painter::Heading(const BarChart& chart, const std::vector<ChartBar>& bars) {
    const int gap = Scaled(kGap, m_dpi);
    const int side = m_rowHeight - gap;
    const std::string heading = chart.Heading(bars);
    Text(m_area.left, m_area.top, heading);
    int left = m_area.left + Extent(heading).cx + 3 * gap;
    int top = m_area.top;
    const auto legend = chart.Legend();
    for (std::size_t part = 0; part < legend.size(); ++part) {
        if (legend[part].empty()) continue;
        const int width = side * 2 + gap + Extent(legend[part]).cx;
        if (left + width > m_area.right && left > m_area.left) {
            left = m_area.left;
            top += m_rowHeight;
        }
        Part({left, top + gap / 2, left + side * 2, top + gap / 2 + side}, part);
        Text(left + side * 2 + gap, top, legend[part]);
        left += width + 2 * gap;
    }
    m_plot.top = top + m_rowHeight * 3 / 2;
}

void Painter::Scale(const BarChart& chart, double top) {
    const int gap = Scaled(kGap, m_dpi);
    const std::string highest = chart.Value(top);
    m_plot.bottom = m_area.bottom - m_rowHeight - gap / 2;
    m_plot.left = m_area.left + Extent(highest).cx + gap;
    const int half = m_rowHeight / 2;
    Text(m_area.left, m_plot.top - half, highest);
    Text(m_plot.left - gap - Extent("0").cx, m_plot.bottom - m_rowHeight, "0");
    Line(m_plot.top, PS_DOT, COLOR_GRAYTEXT);
    Line((m_plot.top + m_plot.bottom) / 2, PS_DOT, COLOR_GRAYTEXT);
    Line(m_plot.bottom, PS_SOLID, COLOR_WINDOWTEXT);
}

// Where the share of a bar begins.
int Painter::Pitch(std::size_t bars, std::size_t at) const {
    return m_plot.left
           + MulDiv(m_plot.right - m_plot.left, static_cast<int>(at),
                    static_cast<int>(std::max<std::size_t>(bars, 1)));
}

void Painter::Bars(const std::vector<ChartBar>& bars, double top) const {
    const int height = m_plot.bottom - m_plot.top;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const int begin = Pitch(bars.size(), i);
        const int pitch = Pitch(bars.size(), i + 1) - begin;
        const int width = std::min(pitch * 3 / 4, Scaled(kWidestBar, m_dpi));
        const int left = begin + (pitch - width) / 2;
        double sum = 0;
        for (std::size_t part = 0; part < kChartPartCount; ++part) {
            const double value = bars[i].values[part];
            if (value <= 0) continue;
            const auto y = [&](double level) { return m_plot.bottom - static_cast<int>(level / top * height); };
            // Neighbours share a line.
            Part({left, y(sum + value), left + width, y(sum) + 1}, part);
            sum += value;
        }
    }
}

// The last one always, the others from the left as far as there is room.
void Painter::Dates(const std::vector<ChartBar>& bars) const {
    if (bars.empty()) return;
    const int gap = 2 * Scaled(kGap, m_dpi);
    const int row = m_plot.bottom + Scaled(kGap, m_dpi) / 2;
    const auto place = [&](std::size_t bar, const std::string& text) {
        const int width = Extent(text).cx;
        const int middle = (Pitch(bars.size(), bar) + Pitch(bars.size(), bar + 1)) / 2;
        return std::max<int>(m_area.left, std::min<int>(middle - width / 2, m_area.right - width));
    };
    const std::string& lastDate = bars.back().to;
    const int last = place(bars.size() - 1, lastDate);
    Text(last, row, lastDate);
    int free = m_area.left;
    for (std::size_t i = 0; i + 1 < bars.size(); ++i) {
        const int left = place(i, bars[i].from);
        const int end = left + Extent(bars[i].from).cx + gap;
        if (left < free || end > last) continue;
        Text(left, row, bars[i].from);
        free = end;
    }
}

void Painter::Paint(const BarChart& chart) {
    const int room = (m_area.right - m_area.left) / Scaled(kNarrowestPitch, m_dpi);
    const auto bars = chart.Bars(static_cast<std::size_t>(std::max(room, 1)));
    const double top = ScaleTop(bars);
    Heading(chart, bars);
    Scale(chart, top);
    Bars(bars, top);
    Dates(bars);
}

} // namespace

void PaintBarChart(HDC target, const RECT& area, HFONT font, UINT dpi, const BarChart& chart) {
    const MemoryDc dc(CreateCompatibleDC(target));
    const Bitmap bitmap(CreateCompatibleBitmap(target, area.right, area.bottom));
    const Pen pen(CreatePen(PS_SOLID, 1, GetSysColor(COLOR_WINDOWTEXT)));
    const int saved = SaveDC(dc.Get());
    for (const HGDIOBJ object : {HGDIOBJ{bitmap.Get()}, HGDIOBJ{pen.Get()}, HGDIOBJ{font}})
        SelectObject(dc.Get(), object);
    FillRect(dc.Get(), &area, GetSysColorBrush(COLOR_WINDOW));
    SetTextColor(dc.Get(), GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(dc.Get(), GetSysColor(COLOR_WINDOW));
    const int margin = Scaled(kGap, dpi);
    Painter(dc.Get(), {area.left + margin, area.top + margin, area.right - margin, area.bottom - margin}, dpi)
        .Paint(chart);
    BitBlt(target, area.left, area.top, area.right - area.left, area.bottom - area.top, dc.Get(), area.left,
           area.top, SRCCOPY);
    RestoreDC(dc.Get(), saved);
}

} // namespace planfold

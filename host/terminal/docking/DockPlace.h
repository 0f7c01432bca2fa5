// Where a pane stands, as it is remembered from session to session.
#pragma once

#include <string>
#include <string_view>

namespace vesk {

enum class DockSide { left, right, top, bottom, count };

struct DockPoint {
    int x = 0, y = 0;
};

struct DockRect {
    int left = 0, top = 0, right = 0, bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Empty() const { return right <= left || bottom <= top; }
    bool Holds(const DockPoint& point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    bool operator==(const DockRect&) const = default;
};

struct DockPlace {
    DockSide side = DockSide::bottom;
    int extent = 250;    // pixels at 96 DPI: width at the left and right, height at the top and bottom
    std::string tabWith; // caption of a pane that it shares its place with; empty: none
    bool floating = false;
    DockRect floatRect{}; // in screen pixels; empty: it never floated

    bool operator==(const DockPlace&) const = default;
};

// One line for the user's settings. What is damaged or missing in such a line takes its usual value.
std::string PlaceText(const DockPlace& place);
DockPlace PlaceFromText(std::string_view text);

// The rectangle moved, and made smaller only where it must be, so that it lies inside `monitor`.
DockRect MovedInside(const DockRect& rect, const DockRect& monitor);

// Pixels at 96 DPI as pixels at `dpi`, and back.
int AtDpi(int pixels, unsigned dpi);
int AtUsualDpi(int pixels, unsigned dpi);

} // namespace vesk

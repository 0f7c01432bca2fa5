#include "host/terminal/docking/window/DropPreview.h"

namespace vesk {
namespace {

constexpr int kThickness = 4; // at 96 DPI

// Only its edge belongs to the window: what lies below stays to be seen, also without a compositor.
HRGN EdgeRegion(int width, int height, int thickness) {
    const HRGN edge = CreateRectRgn(0, 0, width, height);
    const HRGN hole = CreateRectRgn(thickness, thickness, width - thickness, height - thickness);
    CombineRgn(edge, edge, hole, RGN_DIFF);
    DeleteObject(hole);
    return edge;
}

} // namespace

void DropPreview::Show(HWND owner, const RECT& rect) {
    if (IsRectEmpty(&rect)) return Hide();
    if (!Handle()) {
        Args args;
        args.module = GetModuleHandleA(nullptr);
        args.className = "VeskDropPreview";
        args.style = WS_POPUP | WS_DISABLED;
        args.exStyle = WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TOPMOST;
        args.rect = rect;
        args.parent = owner;
        args.background = reinterpret_cast<HBRUSH>(COLOR_HIGHLIGHT + 1);
        if (!Create(args)) return;
    }
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    // The window owns the region from then on.
    SetWindowRgn(Handle(), EdgeRegion(width, height, framework::Scaled(kThickness, Self().Dpi())), TRUE);
    SetWindowPos(Handle(), HWND_TOPMOST, rect.left, rect.top, width, height, SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

} // namespace vesk

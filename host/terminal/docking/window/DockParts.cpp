#include "host/terminal/docking/window/DockParts.h"

#include "host/terminal/docking/window/DockSite.h"

#include <windowsx.h>

namespace vesk {

// A pane whose parent is hidden is told that it is shown or hidden, but not that its position changed; one that
// is shown by its position is told only this.
std::optional<LRESULT> PaneWatch::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND pane = Handle();
    if (message == WM_SHOWWINDOW && lParam == 0) m_site.OnPaneShown(pane, wParam != 0);
    if (message == WM_WINDOWPOSCHANGED) {
        const UINT flags = reinterpret_cast<const WINDOWPOS*>(lParam)->flags;
        if (flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) m_site.OnPaneShown(pane, (flags & SWP_SHOWWINDOW) != 0);
    }
    if (message != WM_CLOSE) return std::nullopt;
    // A pane behind another tab is hidden already: nothing else tells that its owner wants it so.
    const LRESULT answer = Default(message, wParam, lParam);
    if (IsWindow(pane) && !(GetWindowLongPtrA(pane, GWL_STYLE) & WS_VISIBLE)) m_site.OnPaneShown(pane, false);
    return answer;
}

void PaneWatch::OnGone() {
    m_site.ForgetGone();
}

bool LastFocus::OnActivate(HWND window, WPARAM wParam) {
    if (LOWORD(wParam) == WA_INACTIVE) {
        m_focus = GetFocus();
        return true;
    }
    // A minimised window cannot take the focus.
    if (HIWORD(wParam) || !IsChild(window, m_focus) || !IsWindowVisible(m_focus)) return false;
    SetFocus(m_focus);
    return true;
}

bool FloatWindow::Open(HWND owner, const RECT& rect) {
    const std::string caption = framework::Window(m_pane).Text();
    Args args;
    args.module = GetModuleHandleA(nullptr);
    args.className = kClass;
    args.caption = caption.c_str();
    args.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN;
    args.exStyle = WS_EX_TOOLWINDOW | WS_EX_CONTROLPARENT;
    args.rect = rect;
    args.parent = owner;
    return Create(args);
}

std::optional<LRESULT> FloatWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        FitPane();
        return 0;
    case WM_ACTIVATE:
        if (m_focus.OnActivate(Handle(), wParam)) return 0;
        return std::nullopt;
    case WM_SETFOCUS:
        framework::Window(m_pane).Focus();
        return 0;
    case WM_CLOSE:
        m_site.ClosePane(m_pane);
        return 0;
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_DESTROY) m_site.Forget(reinterpret_cast<HWND>(lParam));
        return 0;
    case WM_ENTERSIZEMOVE:
        m_moved = false;
        return 0;
    case WM_MOVING:
        m_moved = true;
        m_site.DragOver(m_pane, {}); // where it floats, it is seen itself
        return TRUE;
    case WM_EXITSIZEMOVE:
        m_site.OnFloatMoved(m_pane, m_moved);
        return 0;
    default:
        return OnCaption(message, lParam);
    }
}

std::optional<LRESULT> FloatWindow::OnCaption(UINT message, LPARAM lParam) {
    if (message != WM_NCLBUTTONDBLCLK && message != WM_NCRBUTTONUP) return std::nullopt;
    const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (SendMessageA(Handle(), WM_NCHITTEST, 0, lParam) != HTCAPTION) return std::nullopt;
    if (message == WM_NCRBUTTONUP)
        m_site.ShowMenu(m_pane, point);
    else
        m_site.ToggleFloating(m_pane);
    return 0;
}

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

#include "host/terminal/docking/window/DockBars.h"

#include <windowsx.h>

#include <cstdlib>
#include <utility>

namespace vesk {
namespace {

using Part = DockHit::Part;

bool IsButton(Part part) {
    return part == Part::floatButton || part == Part::closeButton;
}

bool CanDrag(Part part) {
    return part == Part::caption || part == Part::tab;
}

} // namespace

std::optional<LRESULT> DockBars::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SETCURSOR: {
        POINT mouse{};
        GetCursorPos(&mouse);
        ScreenToClient(m_frame, &mouse);
        if (LOWORD(lParam) != HTCLIENT || !SetCursorOver(m_site.Layout().HitTest({mouse.x, mouse.y})))
            return std::nullopt;
        return TRUE;
    }
    case WM_CAPTURECHANGED:
        EndDrag(false);
        return std::nullopt;
    case WM_MOUSELEAVE:
        Hover({});
        return 0;
    case WM_KEYDOWN:
        if (!m_dragging || wParam != VK_ESCAPE) return std::nullopt;
        ReleaseCapture();
        return 0;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONUP: {
        const DockPoint point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        return OnButton(message, m_site.Layout().HitTest(point), point);
    }
    default:
        return std::nullopt;
    }
}

std::optional<LRESULT> DockBars::OnButton(UINT message, const DockHit& hit, const DockPoint& point) {
    if (message == WM_MOUSEMOVE) return OnMove(hit, point);
    if (message == WM_LBUTTONUP) return OnLetGo(hit);
    if (hit.part == Part::nothing) return std::nullopt;
    if (message == WM_LBUTTONDBLCLK && hit.part == Part::caption) {
        m_site.ToggleFloating(PaneOf(hit.pane));
    } else if (message == WM_RBUTTONUP) {
        POINT screen{point.x, point.y};
        ClientToScreen(m_frame, &screen);
        if (CanDrag(hit.part)) m_site.ShowMenu(PaneOf(hit.pane), screen);
    } else {
        Press(hit, point);
    }
    return 0;
}

void DockBars::Press(const DockHit& hit, const DockPoint& point) {
    SetCapture(m_frame);
    m_pressed = hit;
    m_pressedAt = point;
    if (hit.part == Part::splitter) {
        const DockRect& splitter = m_site.Layout().Groups()[hit.group].splitter;
        m_pressedAt = {point.x - splitter.left, point.y - splitter.top};
    }
    if (hit.part == Part::tab) m_site.Select(PaneOf(hit.pane));
    if (hit.part == Part::caption) SetFocus(PaneOf(hit.pane));
    InvalidateRect(m_frame, nullptr, FALSE);
}

std::optional<LRESULT> DockBars::OnMove(const DockHit& hit, const DockPoint& point) {
    if (m_pressed.part == Part::splitter) {
        m_site.DragSplitter(m_pressed.group, {point.x - m_pressedAt.x, point.y - m_pressedAt.y});
        return 0;
    }
    if (CanDrag(m_pressed.part)) {
        const bool away = std::abs(point.x - m_pressedAt.x) > GetSystemMetrics(SM_CXDRAG)
                          || std::abs(point.y - m_pressedAt.y) > GetSystemMetrics(SM_CYDRAG);
        // Escape comes here while the frame has the focus.
        if (away && !std::exchange(m_dragging, m_dragging || away)) m_focusBefore = SetFocus(m_frame);
        if (m_dragging) {
            const HWND pane = PaneOf(m_pressed.pane);
            m_site.DragOver(pane, m_site.FloatRectAtMouse(pane));
        }
        return 0;
    }
    Hover(hit);
    if (hit.part == Part::nothing && m_pressed.part == Part::nothing) return std::nullopt;
    return 0;
}

std::optional<LRESULT> DockBars::OnLetGo(const DockHit& hit) {
    if (m_pressed.part == Part::nothing) return std::nullopt;
    const DockHit pressed = m_pressed;
    if (pressed.part == Part::splitter) m_site.Remember();
    EndDrag(true);
    ReleaseCapture();
    if (!IsButton(pressed.part) || hit != pressed) return 0;
    if (hit.part == Part::closeButton)
        m_site.ClosePane(PaneOf(hit.pane));
    else
        m_site.ToggleFloating(PaneOf(hit.pane));
    return 0;
}

void DockBars::EndDrag(bool drop) {
    const HWND pane = PaneOf(std::exchange(m_pressed, {}).pane);
    InvalidateRect(m_frame, nullptr, FALSE);
    if (!std::exchange(m_dragging, false)) return;
    SetFocus(m_focusBefore);
    if (drop)
        m_site.Drop(pane, m_site.FloatRectAtMouse(pane));
    else
        m_site.CancelDrag();
}

bool DockBars::SetCursorOver(const DockHit& hit) const {
    if (hit.part != Part::splitter) return false;
    const DockSide side = m_site.Layout().Groups()[hit.group].side;
    const bool across = side == DockSide::left || side == DockSide::right;
    SetCursor(LoadCursorA(nullptr, across ? IDC_SIZEWE : IDC_SIZENS));
    return true;
}

void DockBars::Hover(const DockHit& hit) {
    if (hit == m_hover) return;
    m_hover = hit;
    InvalidateRect(m_frame, nullptr, FALSE);
    if (hit.part == Part::nothing) return;
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, m_frame, 0};
    TrackMouseEvent(&track);
}

} // namespace vesk

// Dragging a pane from place to place.
#include "host/terminal/docking/window/DockSite.h"

namespace vesk {
namespace {

constexpr int kGrip = 12; // from the float window's top to the mouse, at 96 DPI

} // namespace

DockPoint DockSite::MouseInFrame() const {
    POINT point{};
    GetCursorPos(&point);
    ScreenToClient(m_frame, &point);
    return {point.x, point.y};
}

RECT DockSite::FloatRectAtMouse(HWND pane) const {
    const DockPane* known = m_layout.Find(IdOf(pane));
    if (!known) return {};
    RECT rect = FloatRect(*known);
    POINT mouse{};
    GetCursorPos(&mouse);
    OffsetRect(&rect, mouse.x - (rect.left + rect.right) / 2,
               mouse.y - rect.top - framework::Scaled(kGrip, framework::Window(m_frame).Dpi()));
    return rect;
}

void DockSite::DragOver(HWND pane, const RECT& rect) {
    const auto target = m_layout.TargetAt(MouseInFrame(), IdOf(pane));
    if (!target) return m_preview.Hide();
    if (target->kind == DockTarget::Kind::floating) return m_preview.Show(m_frame, rect);
    RECT place = ToRect(m_layout.PreviewOf(IdOf(pane), *target));
    MapWindowPoints(m_frame, nullptr, reinterpret_cast<POINT*>(&place), 2);
    m_preview.Show(m_frame, place);
}

void DockSite::Drop(HWND pane, const RECT& rect) {
    m_preview.Hide();
    const auto target = m_layout.TargetAt(MouseInFrame(), IdOf(pane));
    if (!target) return;
    if (target->kind == DockTarget::Kind::floating) m_layout.SetFloatRect(IdOf(pane), FromRect(rect));
    m_layout.Move(IdOf(pane), *target);
    Moved(pane);
}

void DockSite::OnFloatMoved(HWND pane, bool moved) {
    const DockPane* known = m_layout.Find(IdOf(pane));
    if (!known) return m_preview.Hide();
    RECT rect{};
    GetWindowRect(GetParent(pane), &rect);
    m_layout.SetFloatRect(IdOf(pane), FromRect(rect));
    if (moved) Drop(pane, rect);
    Remember();
}

} // namespace vesk

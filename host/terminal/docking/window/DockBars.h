// The captions, tabs and splitters that the main frame draws around its docked panes, and the mouse on them.
#pragma once

#include "host/terminal/docking/window/DockSite.h"

#include <optional>

namespace vesk {

class DockBars {
public:
    explicit DockBars(DockSite& site) : m_site(site) {}

    void Open(HWND frame) { m_frame = frame; }
    void Paint(HDC context, HFONT font) const;
    // A value when the message was for a bar.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

private:
    std::optional<LRESULT> OnButton(UINT message, const DockHit& hit, const DockPoint& point);
    std::optional<LRESULT> OnMove(const DockHit& hit, const DockPoint& point);
    std::optional<LRESULT> OnLetGo(const DockHit& hit);
    bool SetCursorOver(const DockHit& hit) const;
    void Hover(const DockHit& hit);
    void EndDrag(bool drop);
    void Press(const DockHit& hit, const DockPoint& point);

    void PaintGroup(HDC context, const DockGroup& group, std::size_t index) const;
    void PaintTabs(HDC context, const DockGroup& group) const;
    void PaintButton(HDC context, const DockRect& rect, const DockHit& self) const;

    DockSite& m_site;
    HWND m_frame = nullptr;
    DockHit m_hover, m_pressed;
    DockPoint m_pressedAt; // for a splitter: from its corner
    bool m_dragging = false;
    HWND m_focusBefore = nullptr;
};

} // namespace vesk

#include "plugin/orderbook/window/BottomDock.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr int kPaneHeight = 200; // pixels at 96 DPI

} // namespace

void BottomDock::Dock(HWND frame, HWND pane) {
    m_pane = pane;
    if (Attach(frame)) Place();
}

void BottomDock::OnPaneMoved(const WINDOWPOS& position) {
    constexpr UINT onlyShown = SWP_NOMOVE | SWP_NOSIZE;
    if (!m_placing && (position.flags & onlyShown) != onlyShown) Detach();
}

std::optional<LRESULT> BottomDock::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SIZE) return std::nullopt;
    const LRESULT result = Default(message, wParam, lParam);
    // A frame that looks after its panes has moved ours by now, and we have let go.
    if (Handle() && wParam != SIZE_MINIMIZED) Place();
    return result;
}

void BottomDock::Place() {
    const framework::Window frame(Handle());
    // The frame may have let it float where it stood.
    if (GetAncestor(m_pane, GA_PARENT) != frame.Handle()) return Detach();
    const RECT client = frame.ClientRect();
    const LONG height = std::min<LONG>(framework::Scaled(kPaneHeight, frame.Dpi()), client.bottom);
    m_placing = true;
    SetWindowPos(m_pane, HWND_TOP, 0, client.bottom - height, client.right, height, SWP_NOACTIVATE);
    m_placing = false;
}

} // namespace planfold

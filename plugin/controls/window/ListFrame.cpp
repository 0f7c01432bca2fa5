#include "plugin/controls/window/ListFrame.h"

#include <algorithm>

namespace planfold {

SIZE ListFrame::WindowSize() const {
    RECT place{};
    GetWindowRect(m_dialog.Handle(), &place);
    return {place.right - place.left, place.bottom - place.top};
}

SIZE ListFrame::BeforeLayout() {
    const bool normal = HasRoom() && !IsIconic(m_dialog.Handle()) && !IsZoomed(m_dialog.Handle());
    const SIZE before = normal ? WindowSize() : m_ownSize;
    const SIZE larger{before.cx - m_ownSize.cx, before.cy - m_ownSize.cy};
    m_ownSize = {}; // meanwhile the sizes belong neither to the old layout nor to the new one
    return larger;
}

void ListFrame::AfterLayout(const SIZE& larger) {
    const HWND window = m_dialog.Handle();
    RECT list{};
    GetWindowRect(m_dialog.Item(m_list).Handle(), &list);
    m_listCorner = {list.left, list.top};
    ScreenToClient(window, &m_listCorner);
    if (IsIconic(window) || IsZoomed(window)) return;
    m_ownSize = WindowSize();
    framework::ResizeOnScreen(window, {m_ownSize.cx + larger.cx, m_ownSize.cy + larger.cy});
}

RECT ListFrame::Room(LONG statusHeight) const {
    const RECT client = m_dialog.Self().ClientRect();
    const auto [left, top] = m_listCorner;
    const LONG below = statusHeight ? statusHeight + left / 2 : left;
    return {left, top, client.right - left, std::max(top, client.bottom - below)};
}

void ListFrame::SetLeastSize(LPARAM minMaxInfo) const {
    if (HasRoom()) reinterpret_cast<MINMAXINFO*>(minMaxInfo)->ptMinTrackSize = {m_ownSize.cx, m_ownSize.cy};
}

} // namespace planfold

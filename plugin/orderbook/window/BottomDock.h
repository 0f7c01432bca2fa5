// Keeps a pane at the bottom of the host's main frame until the frame lays it out itself.
#pragma once

#include "framework/Subclass.h"

namespace planfold {

class BottomDock final : public framework::Subclass {
public:
    // Places the pane and follows the frame's size.
    void Dock(HWND frame, HWND pane);
    // The pane's WM_WINDOWPOSCHANGED: when another hand than ours moves or sizes it, that takes over.
    void OnPaneMoved(const WINDOWPOS& position);

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Place();

    HWND m_pane = nullptr;
    bool m_placing = false;
};

} // namespace planfold

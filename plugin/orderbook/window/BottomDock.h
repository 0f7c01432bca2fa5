// Keeps a pane at the bottom of the host's main frame until the frame lays it out itself.
#pragma once

#include "framework/Subclass.h"

namespace planfold {

class BottomDock final : public framework::Subclass {
public:
    // Places the pane and follows the frame's size.
    void Dock(HWND frame, HWND pane);
    // The pane's position changed, by whomever: another hand than ours takes over.
    void OnPaneMoved();

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Place();

    HWND m_pane = nullptr;
    bool m_placing = false;
};

} // namespace planfold

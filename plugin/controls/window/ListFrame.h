// The room of a list that takes what a line of controls above and a status bar below leave, in a window that is
// at least as large as its template.
#pragma once

#include "framework/Dialog.h"

namespace planfold {

class ListFrame {
public:
    ListFrame(const framework::Dialog& dialog, int list) : m_dialog(dialog), m_list(list) {}

    // Around the layout of the template. What the user has made the window larger by stays.
    template <class LayOut>
    void Renew(LayOut layOut) {
        const SIZE larger = BeforeLayout();
        layOut();
        AfterLayout(larger);
    }
    // Until the first layout, and within each, there is no room.
    bool HasRoom() const { return m_ownSize.cx != 0; }
    // In the client area, above a status bar of this height; 0 without one.
    RECT Room(LONG statusHeight) const;
    // Of WM_GETMINMAXINFO.
    void SetLeastSize(LPARAM minMaxInfo) const;
    // The window is gone.
    void Forget() { m_ownSize = {}; }

private:
    SIZE BeforeLayout();
    void AfterLayout(const SIZE& larger);
    SIZE WindowSize() const;

    const framework::Dialog& m_dialog;
    const int m_list;
    SIZE m_ownSize{};     // of the window as the template has it, in its font
    POINT m_listCorner{}; // in the client area
};

} // namespace planfold

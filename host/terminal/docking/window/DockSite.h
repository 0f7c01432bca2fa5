// The plug-ins' panes in the main frame: keeps them where the user wants them, docked or floating, and
// remembers that by each pane's caption.
#pragma once

#include "host/terminal/core/FrameLayout.h"
#include "host/terminal/core/Settings.h"
#include "host/terminal/docking/DockLayout.h"
#include "host/terminal/docking/window/DockParts.h"

#include <list>
#include <memory>
#include <vector>

namespace vesk {

// What can be done with a pane, in the order of the menus. Behind these follows a tab with each pane in turn.
enum class DockCommand : int { show, left, right, top, bottom, floating, hide, firstTab };
inline constexpr int kDockCommandsPerPane = 24;
inline constexpr int kMostPanes = 16;

// The commands of the pane with this number, the same in the View menu and at its caption. The caller, or the
// menu that it is put into, destroys it.
HMENU PaneMenu(const DockLayout& layout, std::size_t pane);

class DockSite {
public:
    explicit DockSite(UserSettings& settings) : m_settings(settings) {}

    // `changedMessage` is posted to the frame whenever the panes need a new layout; WPARAM says whether the
    // menus changed too.
    void Open(HWND frame, UINT changedMessage);

    void Register(HWND pane);
    void Forget(HWND pane);
    std::vector<HWND> Panes() const;
    const DockLayout& Layout() const { return m_layout; }

    // Shares `area` of the frame; the result is the centre's part.
    RECT LayOut(const RECT& area, const FrameScale& scale, bool centreShown);
    // `tab` is the number of the partner for DockCommand::firstTab.
    bool Run(PaneId pane, DockCommand command, std::size_t tab = 0);
    // The command with this number in the pane menus.
    void RunNumber(int number);
    void ClosePane(HWND pane) const { PostMessageA(pane, WM_CLOSE, 0, 0); }
    void ToggleFloating(HWND pane);
    void ShowMenu(HWND pane, POINT screen) const;
    void Select(HWND pane);
    void DragSplitter(std::size_t group, const DockPoint& corner);
    void Remember();

    // These follow a pane that is dragged: `rect` is where it would float, the mouse says where it would dock.
    void DragOver(HWND pane, const RECT& rect);
    void Drop(HWND pane, const RECT& rect);
    void CancelDrag() { m_preview.Hide(); }
    // The rectangle of its float window when it is dragged by the middle of its caption.
    RECT FloatRectAtMouse(HWND pane) const;

    // The parts call these.
    void OnPaneShown(HWND pane, bool shown);
    void OnFloatMoved(HWND pane, bool moved);
    void ForgetGone();

private:
    struct Held {
        HWND pane;
        std::shared_ptr<PaneWatch> watch;
        std::shared_ptr<FloatWindow> window; // while it floats
    };

    void Changed();
    void Moved(HWND pane);
    void Settle(Held& held);
    void SettleFloating(Held& held, const DockPane& pane);
    void SettleDocked(Held& held);
    RECT FloatRect(const DockPane& pane) const;
    DockPoint MouseInFrame() const;

    UserSettings& m_settings;
    HWND m_frame = nullptr;
    UINT m_changedMessage = 0;
    DockLayout m_layout;
    std::list<Held> m_held;
    DropPreview m_preview;
    HWND m_toFocus = nullptr; // with the next layout
    bool m_settling = false;  // panes are hidden and shown by the site itself
};

inline PaneId IdOf(HWND pane) {
    return reinterpret_cast<PaneId>(pane);
}
inline HWND PaneOf(PaneId id) {
    return reinterpret_cast<HWND>(id);
}
inline RECT ToRect(const DockRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}
inline DockRect FromRect(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

} // namespace vesk

// The windows with which a docking site holds a pane: one that watches the pane's messages, and the one in
// which it floats.
#pragma once

#include "framework/CustomWindow.h"
#include "framework/Subclass.h"

#include <memory>

namespace vesk {

class DockSite;

// Panes hide and show themselves; the site hears of it here.
class PaneWatch : public framework::Subclass, public std::enable_shared_from_this<PaneWatch> {
public:
    explicit PaneWatch(DockSite& site) : m_site(site) {}

protected:
    std::shared_ptr<void> Hold() override { return shared_from_this(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnGone() override;

private:
    DockSite& m_site;
};

// Remembers which control of a window had the focus when another window was activated.
class LastFocus {
public:
    // Takes WM_ACTIVATE, and is false when there is nothing to give the focus back to.
    bool OnActivate(HWND window, WPARAM wParam);

private:
    HWND m_focus = nullptr;
};

// A small window that holds one pane. Its caption drags the pane, also back into the frame.
class FloatWindow : public framework::CustomWindow, public std::enable_shared_from_this<FloatWindow> {
public:
    static constexpr const char* kClass = "VeskFloatWindow";

    FloatWindow(DockSite& site, HWND pane) : m_site(site), m_pane(pane) {}

    bool Open(HWND owner, const RECT& rect);
    void FitPane() const { framework::Window(m_pane).Move(Self().ClientRect()); }

protected:
    std::shared_ptr<void> Hold() override { return shared_from_this(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnDpiChanged(UINT, const RECT& suggested) override {
        Self().Move(suggested);
        return true;
    }

private:
    std::optional<LRESULT> OnCaption(UINT message, LPARAM lParam);

    DockSite& m_site;
    HWND m_pane;
    LastFocus m_focus;
    bool m_moved = false; // by the mouse, since it was taken
};

// The hollow rectangle that shows, while a pane is dragged, where it would go.
class DropPreview : public framework::CustomWindow {
public:
    // `rect` is in screen pixels; an empty one hides the preview. `owner` keeps it above itself.
    void Show(HWND owner, const RECT& rect);
    void Hide() { framework::Window(Handle()).Show(false); }
};

} // namespace vesk

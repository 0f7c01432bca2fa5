// The terminal's main window: menu bar, client bar, market watch with the panes around it, tabbed log, status
// bar.
#pragma once

#include "framework/CustomWindow.h"
#include "framework/DialogLayout.h"
#include "host/terminal/core/FrameLayout.h"
#include "host/terminal/docking/window/DockBars.h"
#include "host/terminal/window/frame/Bands.h"

#include <array>
#include <string>
#include <utility>

namespace vesk {

class Application;

// A plug-in sends it: WPARAM is its pane, which the frame lays out from then on.
inline constexpr UINT kRegisterPaneMessage = 1933;
// The frame sends it to a pane; LPARAM is a command's text.
inline constexpr UINT kPaneCommandMessage = 1214;
// The application's own deferred work; WPARAM is its number.
inline constexpr UINT kDeferredMessage = WM_APP + 1;
// The panes need a new layout; WPARAM says whether the menus changed too.
inline constexpr UINT kPanesChangedMessage = WM_APP + 2;
// Lines came into the log since it was shown last.
inline constexpr UINT kLogChangedMessage = WM_APP + 3;

inline constexpr UINT_PTR kPumpTimer = 1;
inline constexpr UINT_PTR kScriptTimer = 2;

class MainFrame : public framework::CustomWindow {
public:
    explicit MainFrame(Application& application);

    bool Open();
    void RebuildMenu();
    void ApplyFont();
    void ShowClient(const std::string& client);
    void ShowLogin();
    // Many lines in one go are shown once.
    void LogChanged() {
        if (!std::exchange(m_logStale, true)) PostMessageA(Handle(), kLogChangedMessage, 0, 0);
    }

    DockSite& Docking() { return m_docking; }

    enum class StatusPart : std::size_t { note, client, login, server, date, plugin, count };
    void SetStatus(StatusPart part, const std::string& text, bool warns = false);

protected:
    bool OnCommand(const framework::Command& command) override;
    std::optional<LRESULT> OnNotify(const NMHDR& header) override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnDpiChanged(UINT dpi, const RECT& suggested) override;

private:
    enum BandIndex : std::size_t { clientBand, middleBand, logBand };

    bool CreateChildren();
    bool OnMenuCommand(int id);
    std::optional<LRESULT> OnMouse(UINT message, LPARAM lParam);
    void OnPanesChanged(bool menus);
    // Gives the text to every pane.
    void TellPanes(const std::string& command);
    void LayOut();
    void LayOutStatusBar(int width);
    FrameScale Scale() const;

    Application& m_application;
    ClientBar m_clientBar;
    MarketWatch m_watch;
    LogView m_log;
    framework::Window m_status;
    std::array<std::string, static_cast<std::size_t>(StatusPart::count)> m_statusTexts;
    framework::Font m_font;
    DockSite m_docking; // shares the middle band with the market watch
    DockBars m_dockBars;
    LastFocus m_focus;
    FrameLayout m_layout;
    std::optional<std::size_t> m_dragged; // band whose upper edge the mouse holds
    UINT m_dpi = USER_DEFAULT_SCREEN_DPI; // the bands' heights are for this
    bool m_watchShown = true;
    bool m_logShown = true;
    bool m_logStale = false;
    bool m_menuStale = false; // while a menu is open, it cannot be replaced
};

} // namespace vesk

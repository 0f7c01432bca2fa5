// The menu bar, built anew from what it shows whenever that changes, and the identifiers of the main frame's
// commands and controls.
#pragma once

#include "host/market/TerminalConfig.h"
#include "host/terminal/docking/DockLayout.h"
#include "host/terminal/window/PluginHost.h"

#include <windows.h>

#include <string>
#include <vector>

namespace vesk {

enum ControlId : int {
    kClientLabelId = 500,
    kClientComboId = 501,
    kMarketWatchId = 502,
    kLogTabsId = 503,
    kLogListId = 504,
    kStatusBarId = 505,
};

enum CommandId : int {
    kExitCommand = 1,
    kShowWatchCommand = 10,
    kShowLogCommand = 11,
    kNextInstalmentCommand = 13,
    kClockCommand = 14,
    kCancelOrderCommand = 15,
    kFillCommand = 16,
    kOtherOrdersCommand = 17,
    kExecuteCommand = 18,
    kWaitingCommand = 19,
    kFontSmallerCommand = 20,
    kFontNormalCommand = 21,
    kFontLargerCommand = 22,
    kFirstPaneCommand = 100,      // + pane * kDockCommandsPerPane
    kFirstFontSizeCommand = 1000, // + points
    kFirstLoginModeCommand = 1100,
    kFirstRightCommand = 1200,
    kFirstPluginCommand = 2000,
};
inline constexpr int kMostRights = 200;
inline constexpr int kEntriesPerPlugin = 64;

struct MenuContents {
    const std::vector<Plugin>& plugins;
    const TerminalConfig& config;
    bool watchShown;
    bool logShown;
    const DockLayout& panes;
};

// The caller gives it to a window, which then owns it.
HMENU BuildMenuBar(const MenuContents& contents);

// The entries of a menu as the user reads them, without separators, marks and key texts.
struct MenuItem {
    std::string text;
    HMENU submenu;
    UINT id;
    bool enabled;
};
std::vector<MenuItem> MenuEntries(HMENU menu);

// Every line of a menu: "-" for a separator, "~" before the text of a greyed entry.
std::vector<std::string> MenuLines(HMENU menu);

} // namespace vesk

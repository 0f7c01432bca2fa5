// The menu bar, built anew from what it shows whenever that changes.
#pragma once

#include "host/market/TerminalConfig.h"
#include "host/terminal/docking/DockLayout.h"
#include "host/terminal/window/PluginHost.h"

#include <windows.h>

#include <string>
#include <vector>

namespace vesk {

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
struct MenuEntry {
    std::string text;
    HMENU submenu;
    UINT id;
    bool enabled;
};
std::vector<MenuEntry> MenuEntries(HMENU menu);

// Every line of a menu: "-" for a separator, "~" before the text of a greyed entry.
std::vector<std::string> MenuLines(HMENU menu);

} // namespace vesk

// The menus of the panes: the same in the View menu and at a pane's caption.
#pragma once

#include "host/terminal/docking/DockLayout.h"

#include <windows.h>

namespace vesk {

// The commands of the pane with this number. The caller, or the menu it is put into, destroys it.
HMENU PaneMenu(const DockLayout& layout, std::size_t pane);

} // namespace vesk

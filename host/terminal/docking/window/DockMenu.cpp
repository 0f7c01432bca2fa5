// The menu of a pane.
#include "host/terminal/docking/window/DockSite.h"
#include "host/terminal/window/frame/MenuBar.h"

#include <algorithm>

namespace vesk {
namespace {

struct Entry {
    DockCommand command;
    const char* text;
    bool last; // a separator follows
};
constexpr Entry kEntries[] = {
    {DockCommand::show, "&Show", true},          {DockCommand::left, "Dock &Left", false},
    {DockCommand::right, "Dock &Right", false},  {DockCommand::top, "Dock &Top", false},
    {DockCommand::bottom, "Dock &Bottom", true}, {DockCommand::floating, "&Float", true},
    {DockCommand::hide, "&Hide", false},
};

// The entry of its present state is checked; what would change nothing is greyed.
UINT StateOf(const DockPane& pane, const DockGroup* group, DockCommand command) {
    const int side = group && group->panes.size() == 1 ? static_cast<int>(group->side) : -1;
    if (static_cast<int>(command) - static_cast<int>(DockCommand::left) == side) return MF_CHECKED;
    if (command == DockCommand::show) return pane.shown ? MF_CHECKED : MF_UNCHECKED;
    if (command == DockCommand::hide) return pane.shown ? MF_ENABLED : MF_GRAYED;
    if (command == DockCommand::floating) return pane.place.floating ? MF_CHECKED : MF_UNCHECKED;
    return MF_ENABLED;
}

} // namespace

HMENU PaneMenu(const DockLayout& layout, std::size_t index) {
    const DockPane& pane = layout.Panes()[index];
    const DockGroup* group = layout.GroupOf(pane.id);
    const auto first =
        static_cast<UINT_PTR>(kFirstPaneCommand) + index * static_cast<std::size_t>(kDockCommandsPerPane);
    const HMENU menu = CreatePopupMenu();
    for (const Entry& entry : kEntries) {
        if (entry.command == DockCommand::hide)
            for (std::size_t i = 0; i < std::min<std::size_t>(layout.Panes().size(), kMostPanes); ++i) {
                const DockPane& other = layout.Panes()[i];
                const DockGroup* others = layout.GroupOf(other.id);
                if (i == index || !others) continue;
                AppendMenuA(menu, others == group ? MF_CHECKED : MF_UNCHECKED,
                            first + static_cast<UINT_PTR>(DockCommand::firstTab) + i,
                            ("Tabbed with " + other.caption).c_str());
            }
        AppendMenuA(menu, StateOf(pane, group, entry.command), first + static_cast<UINT_PTR>(entry.command),
                    entry.text);
        if (entry.last) AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    }
    return menu;
}

} // namespace vesk

#include "host/terminal/window/frame/MenuBar.h"

#include "host/terminal/docking/window/DockSite.h"
#include "host/terminal/window/frame/MenuBar.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr const char* kLoginModes[] = {
    "&0  No identity", "&1  Broker", "&2  Branch", "&3  User, mapped accounts", "&4  User, account overview",
};
static_assert(std::size(kLoginModes) == TerminalConfig::kMostLoginMode + 1);

constexpr const char* kSeparator = "-";
constexpr int kFontSizes[] = {8, 9, 10, 11, 12, 14};

void Add(HMENU menu, int id, const std::string& text, bool checked = false, bool radio = false) {
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_ID | MIIM_STRING | MIIM_STATE | MIIM_FTYPE;
    item.fType = radio ? MFT_RADIOCHECK : MFT_STRING;
    item.fState = checked ? MFS_CHECKED : MFS_ENABLED;
    item.wID = static_cast<UINT>(id);
    item.dwTypeData = const_cast<char*>(text.c_str());
    InsertMenuItemA(menu, static_cast<UINT>(GetMenuItemCount(menu)), TRUE, &item);
}

void AddSeparator(HMENU menu) {
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
}

void AddSubmenu(HMENU menu, HMENU submenu, const char* text) {
    AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(submenu), text);
}

HMENU FontMenu(const TerminalConfig& config) {
    const HMENU menu = CreatePopupMenu();
    Add(menu, kFontSmallerCommand, "&Smaller");
    Add(menu, kFontNormalCommand, "&Normal", config.fontSize == 0 && config.fontVariation == 0, true);
    Add(menu, kFontLargerCommand, "&Larger");
    AddSeparator(menu);
    for (const int points : kFontSizes)
        Add(menu, kFirstFontSizeCommand + points, std::to_string(points) + " pt",
            config.fontSize == points && config.fontVariation == 0, true);
    return menu;
}

HMENU ViewMenu(const MenuContents& contents) {
    const HMENU menu = CreatePopupMenu();
    Add(menu, kShowWatchCommand, "&Market Watch", contents.watchShown);
    Add(menu, kShowLogCommand, "&Log", contents.logShown);
    const auto& panes = contents.panes.Panes();
    for (std::size_t i = 0; i < std::min<std::size_t>(panes.size(), kMostPanes); ++i)
        AppendMenuA(menu, MF_POPUP | (panes[i].shown ? MF_CHECKED : MF_UNCHECKED),
                    reinterpret_cast<UINT_PTR>(PaneMenu(contents.panes, i)), panes[i].caption.c_str());
    AddSeparator(menu);
    AddSubmenu(menu, FontMenu(contents.config), "&Font Size");
    return menu;
}

HMENU UserMenu(const TerminalConfig& config) {
    const HMENU menu = CreatePopupMenu(), modes = CreatePopupMenu(), rights = CreatePopupMenu();
    for (int mode = TerminalConfig::kLeastLoginMode; mode <= TerminalConfig::kMostLoginMode; ++mode)
        Add(modes, kFirstLoginModeCommand + mode, kLoginModes[mode], config.loginMode == mode, true);
    int id = kFirstRightCommand;
    for (const auto& [right, granted] : config.rights)
        if (id < kFirstRightCommand + kMostRights) Add(rights, id++, right, granted);
    AddSubmenu(menu, modes, "Login &Mode");
    AddSubmenu(menu, rights, "&Rights");
    return menu;
}

HMENU ServerMenu() {
    const HMENU menu = CreatePopupMenu();
    Add(menu, kWaitingCommand, "&Waiting Requests...");
    AddSeparator(menu);
    Add(menu, kNextInstalmentCommand, "Advance to &Next Instalment");
    Add(menu, kClockCommand, "&Advance Clock...");
    AddSeparator(menu);
    Add(menu, kFillCommand, "&Fill Registrations...");
    Add(menu, kOtherOrdersCommand, "&Orders from Another Session...");
    Add(menu, kExecuteCommand, "&Execute Instalments...");
    return menu;
}

std::string Plain(std::string text) {
    text.resize(std::min(text.find('\t'), text.size()));
    std::erase(text, '&');
    return text;
}

std::vector<MenuItem> AllEntries(HMENU menu) {
    std::vector<MenuItem> entries;
    for (int i = 0, count = GetMenuItemCount(menu); i < count; ++i) {
        char text[256] = "";
        MENUITEMINFOA item{};
        item.cbSize = sizeof item;
        item.fMask = MIIM_ID | MIIM_STRING | MIIM_STATE | MIIM_FTYPE | MIIM_SUBMENU;
        item.dwTypeData = text;
        item.cch = sizeof text;
        if (!GetMenuItemInfoA(menu, static_cast<UINT>(i), TRUE, &item)) continue;
        entries.push_back({item.fType & MFT_SEPARATOR ? kSeparator : Plain(text), item.hSubMenu, item.wID,
                           !(item.fState & MFS_DISABLED)});
    }
    return entries;
}

} // namespace

HMENU BuildMenuBar(const MenuContents& contents) {
    const HMENU bar = CreateMenu(), file = CreatePopupMenu(), orders = CreatePopupMenu();
    Add(file, kExitCommand, "E&xit\tAlt+F4");
    AddSubmenu(bar, file, "&File");
    AddSubmenu(bar, ViewMenu(contents), "&View");
    AddSubmenu(bar, UserMenu(contents.config), "&User");
    Add(orders, kCancelOrderCommand, "&Cancel Order");
    AddSubmenu(bar, orders, "&Orders");
    AddSubmenu(bar, ServerMenu(), "&Server");
    int id = kFirstPluginCommand;
    for (const Plugin& plugin : contents.plugins) {
        const HMENU menu = CreatePopupMenu();
        const std::size_t count = std::min<std::size_t>(plugin.menu.size(), kEntriesPerPlugin);
        for (std::size_t i = 0; i < count; ++i)
            Add(menu, id + static_cast<int>(i), plugin.menu[i]);
        AddSubmenu(bar, menu, ('&' + plugin.name).c_str());
        id += kEntriesPerPlugin;
    }
    return bar;
}

std::vector<MenuItem> MenuEntries(HMENU menu) {
    std::vector<MenuItem> entries = AllEntries(menu);
    std::erase_if(entries, [](const MenuItem& entry) { return entry.text == kSeparator; });
    return entries;
}

std::vector<std::string> MenuLines(HMENU menu) {
    std::vector<std::string> lines;
    for (const MenuItem& entry : AllEntries(menu))
        lines.push_back((entry.enabled || entry.text == kSeparator ? "" : "~") + entry.text);
    return lines;
}

} // namespace vesk

// The row menus of the two books. The lists add entries of their own behind them.
#pragma once

#include "plugin/orderbook/OrderInfo.h"

#include <vector>

namespace planfold {

inline constexpr int kOrderHistoryCommand = 4;
inline constexpr int kRefreshCommand = 25001;
inline constexpr int kCancelCommand = 25002;
inline constexpr int kModifyCommand = 25003;
inline constexpr int kPauseCommand = 25004;
inline constexpr int kResumeCommand = 25005;

inline constexpr std::string_view kPausedStatus = "Paused";

struct MenuEntry {
    const char* text;
    int command;
    bool greyed = false;
};

// `selected` is the first selected row's record; null when no row is selected.
std::vector<MenuEntry> RegisteredMenu(const sOrderinfo* selected);
std::vector<MenuEntry> CancelledMenu();

} // namespace planfold

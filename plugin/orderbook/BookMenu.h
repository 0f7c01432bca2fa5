// The row menus of the two books. The lists add entries of their own behind them.
#pragma once

#include "plugin/controls/MenuEntry.h"
#include "plugin/orderbook/OrderInfo.h"

#include <vector>

namespace planfold {

inline constexpr int kOrderHistoryCommand = 4;
inline constexpr int kRefreshCommand = 25001;
inline constexpr int kCancelCommand = 25002;
inline constexpr int kModifyCommand = 25003;
inline constexpr int kPauseCommand = 25004;
inline constexpr int kResumeCommand = 25005;
// Of several rows; they stand among the list's own entries.
inline constexpr int kPauseSelectedCommand = 25101;
inline constexpr int kResumeSelectedCommand = 25102;

// `selected` is the first selected row's record; null when no row is selected.
std::vector<MenuEntry> RegisteredMenu(const sOrderinfo* selected);
std::vector<MenuEntry> CancelledMenu();
// None unless several rows are selected.
std::vector<MenuEntry> SeveralRowsMenu(std::size_t selected);

} // namespace planfold

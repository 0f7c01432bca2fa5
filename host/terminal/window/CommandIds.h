// The identifiers of the main frame's controls and menu commands.
#pragma once

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
inline constexpr int kMostClockDays = 4000;
inline constexpr int kEntriesPerPlugin = 64;

} // namespace vesk

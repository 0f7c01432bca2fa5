#include "plugin/orderbook/BookLists.h"

namespace planfold {

namespace {

constexpr MenuEntry kOrderHistory{"Order History", kOrderHistoryCommand};

} // namespace

std::vector<MenuEntry> RegisteredMenu(const sOrderinfo* selected) {
    std::vector<MenuEntry> entries{{"Refresh", kRefreshCommand}, {"Cancel\tDel", kCancelCommand}};
    if (selected && !HasEnded(selected->Text(OrderField::sipStatus))) {
        const bool paused = selected->Text(OrderField::sipStatus) == kPausedStatus;
        entries.push_back({"Modify", kModifyCommand});
        entries.push_back({"Pause", kPauseCommand, paused});
        entries.push_back({"Resume", kResumeCommand, !paused});
    }
    entries.push_back(kOrderHistory);
    return entries;
}

std::vector<MenuEntry> CancelledMenu() {
    return {kOrderHistory};
}

std::vector<MenuEntry> SeveralRowsMenu(std::size_t selected) {
    if (selected < 2) return {};
    return {{"Pause Selected...", kPauseSelectedCommand},
            {"Resume Selected...", kResumeSelectedCommand},
            {nullptr, 0}};
}

} // namespace planfold

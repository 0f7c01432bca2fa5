// What the two books show and offer: their columns in order, and the menus of their rows. The lists add entries
// of their own behind these.
#pragma once

#include "plugin/controls/Lists.h"
#include "plugin/orderbook/OrderInfo.h"

#include <span>
#include <vector>

namespace planfold {

using BookColumn = ListColumn<OrderField>;

inline constexpr BookColumn kBookColumns[] = {
    {"User ID", 100, OrderField::loginId},
    {"Client ID", 100, OrderField::account},
    {"Exchange", 50, OrderField::exchange},
    {"Trading Symbol", 200, OrderField::tradingSymbol},
    {"Product", 100, OrderField::product},
    {"Action", 50, OrderField::side},
    {"Order Type", 75, OrderField::orderType},
    {"Amount", 50, OrderField::amount, ValueType::amount, Align::right},
    {"Quantity", 50, OrderField::quantity, ValueType::number, Align::right},
    {"Frequency", 75, OrderField::frequency},
    {"Start Date", 100, OrderField::startDate},
    {"Total Period(Month(s))", 200, OrderField::totalPeriod},
    {"Next Exec Date", 150, OrderField::nextExecutionDate},
    {"SIP Status", 150, OrderField::sipStatus},
    {"SIP Registration No ", 100, OrderField::registrationNumber, ValueType::identifier},
    {"SIP Registration Date", 100, OrderField::registrationDate},
    {"Account Name", 100, OrderField::accountName},
    {"Order Source", 50, OrderField::orderSource},
    {"End Date", 100, OrderField::endDate},
    {"No of Installments registered", 50, OrderField::installmentsRegistered, ValueType::number, Align::right},
    {"Remarks", 100, OrderField::userText},
    {"Cancelled By", 100, OrderField::cancelledBy},
    {"Cancelled Date", 100, OrderField::cancelledDate},
};

// The registered book ends before the three of the cancellation.
inline constexpr std::span<const BookColumn> kCancelledColumns = kBookColumns;
inline constexpr std::span<const BookColumn> kRegisteredColumns = kCancelledColumns.first<20>();
// The one that the active client filters.
inline constexpr int kClientColumn = 1;
// Those by which the status line sums up.
inline constexpr int kSideColumn = 5, kAmountColumn = 7, kQuantityColumn = 8;
static_assert(kBookColumns[kClientColumn].field == OrderField::account
              && kBookColumns[kSideColumn].field == OrderField::side
              && kBookColumns[kAmountColumn].field == OrderField::amount
              && kBookColumns[kQuantityColumn].field == OrderField::quantity);

inline constexpr int kOrderHistoryCommand = 4;
inline constexpr int kRefreshCommand = 25001;
inline constexpr int kCancelCommand = 25002;
inline constexpr int kModifyCommand = 25003;
inline constexpr int kPauseCommand = 25004;
inline constexpr int kResumeCommand = 25005;
// These two are for several rows, and stand among the list's own entries.
inline constexpr int kPauseSelectedCommand = 25101;
inline constexpr int kResumeSelectedCommand = 25102;
// Windows about the whole book.
inline constexpr int kUpcomingRunsCommand = 25105;
inline constexpr int kRunsOfPeriodCommand = 25106;
// The selected rows of the open page.
inline constexpr int kCopyToBasketCommand = 25107;
inline constexpr MenuEntry kMorningMenu[] = {
    {"Upcoming Runs...\tCtrl+U", kUpcomingRunsCommand},
    {"Runs of a Period...\tCtrl+R", kRunsOfPeriodCommand},
    {"Copy to Basket...\tCtrl+B", kCopyToBasketCommand},
};
// Out to a spreadsheet, and back.
inline constexpr int kExportForChangesCommand = 25121;
inline constexpr int kLoadChangesCommand = 25122;
inline constexpr int kStepUpCommand = 25123;
inline constexpr MenuEntry kChangesMenu[] = {
    {"Export for Changes...", kExportForChangesCommand},
    {"Load Changes...", kLoadChangesCommand},
    {"Step Up...", kStepUpCommand},
};
constexpr bool IsChangesCommand(int command) {
    return command >= kExportForChangesCommand && command <= kStepUpCommand;
}
constexpr bool IsMorningCommand(int command) {
    return command >= kUpcomingRunsCommand && command <= kCopyToBasketCommand;
}

// `selected` is the first selected row's record; null when no row is selected.
std::vector<MenuEntry> RegisteredMenu(const sOrderinfo* selected);
std::vector<MenuEntry> CancelledMenu();
// None unless several rows are selected.
std::vector<MenuEntry> SeveralRowsMenu(std::size_t selected);

} // namespace planfold

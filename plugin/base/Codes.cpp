#include "plugin/base/Codes.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

constexpr CodeRow exchangeToDisplay[] = {{"bse_cm", "BSE"}, {"nse_cm", "NSE"}};
constexpr CodeRow exchangeToServer[] = {{"BSE", "bse_cm"}, {"NSE", "nse_cm"}};
constexpr CodeRow planToSideLabel[] = {{"SIP", "BUY"}, {"SWP", "SELL"}};
constexpr CodeRow planToServer[] = {{"SIP", "B"}, {"SWP", "S"}};
constexpr CodeRow planToDisplay[] = {{"B", "SIP"}, {"S", "SWP"}};
constexpr CodeRow orderTypeToServer[] = {{"MARKET", "MKT"}};
constexpr CodeRow orderTypeToDisplay[] = {{"MKT", "MARKET"}, {"L", "LIMIT"}};
constexpr CodeRow investTypeToServer[] = {{"Amount", "value"}, {"Quantity", "qty"}};
constexpr CodeRow investTypeToDisplay[] = {{"value", "Amount"}, {"qty", "Quantity"}};

constexpr std::array<std::string_view, 12> monthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

} // namespace

constinit const CodeTable kExchangeToDisplay = exchangeToDisplay;
constinit const CodeTable kExchangeToServer = exchangeToServer;
constinit const CodeTable kPlanToSideLabel = planToSideLabel;
constinit const CodeTable kPlanToServer = planToServer;
constinit const CodeTable kPlanToDisplay = planToDisplay;
constinit const CodeTable kOrderTypeToServer = orderTypeToServer;
constinit const CodeTable kOrderTypeToDisplay = orderTypeToDisplay;
constinit const CodeTable kMarketOrderTypeToDisplay = CodeTable(orderTypeToDisplay).first(1);
constinit const CodeTable kInvestTypeToServer = investTypeToServer;
constinit const CodeTable kInvestTypeToDisplay = investTypeToDisplay;

void Convert(CodeTable table, std::string_view text, std::string& out) {
    const auto row = std::ranges::find(table, text, &CodeRow::from);
    if (row != table.end()) out = row->to;
}

int MonthNumber(std::string_view name) {
    const auto found = std::ranges::find(monthNames, name);
    return found == monthNames.end() ? 0 : static_cast<int>(found - monthNames.begin()) + 1;
}

std::string_view MonthName(int month) {
    return monthNames.at(static_cast<std::size_t>(month - 1));
}

} // namespace planfold

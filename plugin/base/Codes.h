// The fixed tables between the words a user reads and the codes that travel to the server.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace planfold {

struct CodeRow {
    std::string_view from;
    std::string_view to;
};

// One direction of one conversion. Matching is exact and case-sensitive.
using CodeTable = std::span<const CodeRow>;

extern const CodeTable kExchangeToDisplay;
extern const CodeTable kExchangeToServer;
extern const CodeTable kPlanToSideLabel;          // "SIP" to "BUY"
extern const CodeTable kPlanToServer;             // "SIP" to "B"
extern const CodeTable kPlanToDisplay;            // "B" to "SIP"
extern const CodeTable kOrderTypeToServer;        // market orders only
extern const CodeTable kOrderTypeToDisplay;       // market and limit
extern const CodeTable kMarketOrderTypeToDisplay; // market orders only
extern const CodeTable kInvestTypeToServer;
extern const CodeTable kInvestTypeToDisplay;

// A text that stands in no row leaves `out` as it was.
void Convert(CodeTable table, std::string_view text, std::string& out);

// 1 to 12 for "Jan" to "Dec", exact and case-sensitive; 0 for anything else.
int MonthNumber(std::string_view name);

// "Jan" to "Dec" for 1 to 12.
std::string_view MonthName(int month);

} // namespace planfold

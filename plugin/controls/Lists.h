// What the plug-in's lists have in common: their columns and the entries of their menus.
#pragma once

#include "sdk/korvex/ValueType.h"

namespace planfold {

using korvex::ValueType;
enum class Align { left, right };

// `Field` names what the records hold.
template <class Field>
struct ListColumn {
    const char* heading;
    int width; // pixels at 96 DPI
    Field field;
    ValueType type = ValueType::text;
    Align align = Align::left;
};

// Each list has a hundred numbers for the commands of its own menu entries, by its place here.
enum class NumberedList : unsigned {
    registeredOrders,
    cancelledOrders,
    basket,
    orderHistory,
    dayReport,
    upcomingRuns,
    runsOfPeriod,
    changes = 8, // the hundred before it is free
    basketCheck
};

constexpr unsigned FirstCommand(NumberedList list) {
    return 26000 + 100 * static_cast<unsigned>(list);
}

// An entry of a list's menu.
struct MenuEntry {
    const char* text; // none: a separator
    int command;
    bool greyed = false;
};

} // namespace planfold

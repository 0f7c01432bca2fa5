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

// An entry of a list's menu.
struct MenuEntry {
    const char* text; // none: a separator
    int command;
    bool greyed = false;
};

} // namespace planfold

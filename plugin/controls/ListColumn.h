// What the columns of the plug-in's lists have in common.
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

} // namespace planfold

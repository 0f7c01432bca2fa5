// What the columns of the plug-in's lists have in common.
#pragma once

namespace planfold {

// What a column holds, as the filter list counts them.
enum class ValueType : int { number = 1, text = 3, amount = 9, identifier = 11 };
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

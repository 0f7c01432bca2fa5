// What the columns of the plug-in's lists have in common.
#pragma once

namespace planfold {

// What a column holds, as the filter list counts them.
enum class ValueType : int { number = 1, text = 3, amount = 9, identifier = 11 };
enum class Align { left, right };

} // namespace planfold

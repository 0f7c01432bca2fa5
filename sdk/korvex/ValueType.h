// What a column of a shared list holds. It decides how the column sorts, which comparisons its filter offers
// and how it is exported.
#pragma once

#include <cstdint>

namespace korvex {

enum class ValueType : std::int32_t {
    number = 1,      // a decimal number; compared by value
    text = 3,        // compared by its letters, ignoring case
    amount = 9,      // a decimal number that stands for money; compared by value
    identifier = 11, // digits that name something; compared as text and never rounded
};

} // namespace korvex

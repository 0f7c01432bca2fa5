// What a column of a shared list holds. It decides how the column sorts, which comparisons its filter offers
// and how it is exported.
#pragma once

#include <cstdint>

namespace korvex {

enum class ValueType : std::int32_t {
    number = 1,      // a decimal number; compared by value
    text = 3,        // whole numbers by value, then dates, then what is neither by its letters, ignoring case
    date = 5,        // a date such as 05-Mar-2027, a time behind it where there is one
    amount = 9,      // a decimal number that stands for money; compared by value
    identifier = 11, // digits that name something; compared as text and never rounded
};

} // namespace korvex

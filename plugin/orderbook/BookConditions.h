// Rows of the book that a dealer looks for again and again: the ready views, and whose rows they are.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/orderbook/OrderInfo.h"

#include <span>
#include <string_view>

namespace planfold {

struct BookDay {
    LocalDateTime today;
    std::string_view loginId; // of the session; empty: every row is its own
};

struct BookCondition {
    const char* name;
    bool isSwitch; // stands beside the others
    bool (*meets)(const sOrderinfo& record, const BookDay& day);
};

// Whether it is this user's; everything is an empty one's.
bool IsOf(const sOrderinfo& record, std::string_view user);

// "Due Today", "Due in 7 Days", "Ending within 3 Runs", "Paused over 30 Days", "Not Run when Due" and the
// switch "Mine Only". Days are those of the records: the next execution, and the end. A pause is as old as the
// day that passed in it: no record says when it began.
std::span<const BookCondition> BookConditions();

} // namespace planfold

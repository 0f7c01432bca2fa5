// Of many rows of the registered book, those that something can be done with: what they mean in money and
// shares, and how many others are left out for which reason.
#pragma once

#include "plugin/orderbook/BookRequests.h"
#include "plugin/orderbook/OrderCache.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// Why a status forbids a request: the text of a single row, and a word for several.
struct StatusRefusal {
    std::string_view status;
    const char* text;
    const char* word;
};
// Null when the status allows it.
const StatusRefusal* RefusalTo(PauseOrResume which, std::string_view status);

struct BookChoice {
    std::vector<RecordId> records; // those that it can be done with
    std::string totals;            // "2 clients.", and a line for each side
    std::string leftOut;           // a line; empty when none is
};
// Of `chosen` rows `gone` have left the book meanwhile. `user` is who is logged in: nobody else's rows can be
// changed.
BookChoice ChooseToChange(PauseOrResume which, const OrderCache& cache, std::span<const RecordId> chosen,
                          std::size_t gone, std::string_view user);

} // namespace planfold

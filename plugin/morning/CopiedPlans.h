// Registrations of the book that are to be placed again: the orders that they become.
#pragma once

#include "plugin/base/RunCalendar.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderbook/OrderCache.h"
#include "plugin/orderentry/SipOrder.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace planfold {

enum class CopiedPeriods {
    left,       // what was still to come when the plan ended
    registered, // as many as before
    one,        // a run that failed, of a plan that may go on
};

struct CopiedPlans {
    std::vector<sSipOrderData> orders; // as they are named; their tokens are not known
    // Left out.
    std::size_t running = 0; // what is not at its end is not doubled
    std::size_t over = 0;    // of which nothing is left
    std::size_t unknown = 0; // that the book does not have, or whose fields cannot be read
};

// Each name is a registration's number; one that stands several times is placed as often.
CopiedPlans CopyPlans(const OrderCache& records, std::span<const std::string> numbers, CopiedPeriods periods,
                      Day start, const Session& session);

// "5 orders come into the basket. Left out: 2 still running, 1 without runs left."
std::string DescribeCopies(const CopiedPlans& copies);

} // namespace planfold

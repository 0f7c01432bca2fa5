// The orders of the basket that were not sent, as they outlive the session: a basket file, so that it can also
// be loaded by hand.
#pragma once

#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace planfold {

// Empty when every row was sent. Of the rows that are being sent, and with `placing` of all, is noted that they
// may have been.
std::string UnsentText(const BasketRows& rows, const BasketList& list, bool placing);

struct UnsentCounts {
    std::size_t orders = 0;
    std::size_t doubtful = 0; // of them, those that may have been sent
};
UnsentCounts CountUnsent(std::string_view text);

// The doubtful ones count as sent when the text is loaded.
void RememberDoubtful(std::string_view text, BasketRows& rows);

} // namespace planfold

// Numbers out of typed or received text, and the range of a price.
#pragma once

#include "sdk/HostRecords.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace planfold {

// The whole number at the start of the text, after blanks and a sign; 0 without one. Held at the ends of
// the 64-bit range.
std::int64_t LeadingInteger(std::string_view text);

// The decimal number at the start of the text, after blanks and a sign; 0 without one.
double LeadingReal(std::string_view text);

// True of an empty text, too.
bool AllDigits(std::string_view text);

// Paise as rupees, grouped as the market does: "Rs 1,00,00,000.00". So money is written in every text of the
// plug-in's own; the second is for where "Rs" stands elsewhere.
std::string FormatRupees(std::int64_t paise);
std::string GroupedRupees(std::int64_t paise);
// "1500.50", as cells have it, and back: the digits of the paise, empty for nothing.
std::string InRupees(std::int64_t paise);
std::string InPaise(std::string_view rupees);
// "1,00,000".
std::string GroupedCount(std::int64_t count);

// How the exchange counts a scrip's prices.
struct PriceScale {
    int decimals = 2;
    double multiplier = 100.0;
    std::int64_t tickSize = 1;
};
// Of the host's record, which is checked here, once: without one, and for what no exchange uses, rupees and
// paise.
PriceScale ScaleOf(const ScripDetails* details);

// Whether the price fits the exchange's integers. On failure `message` says which range it leaves and, with
// scrip details, the largest price: texts to be put behind the name of the checked field.
bool CheckPriceRange(std::string_view price, std::string& message, const ScripDetails* details,
                     bool check32Bit);

// The largest price of the scrip that fits 32 bits and its tick. False without details.
bool FormatMaxPrice(std::string& text, const ScripDetails* details);

} // namespace planfold

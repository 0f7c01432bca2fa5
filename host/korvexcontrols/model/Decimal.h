// Exact decimals of any length, as cells and filters hold them: digits, never a double.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvex {

// The text of a number taken apart; the views lie in it.
struct Decimal {
    bool negative = false;     // never of zero
    std::string_view whole;    // without leading zeros
    std::string_view fraction; // without trailing zeros
};

// A sign, digits and one point, with blanks around; nothing else.
std::optional<Decimal> ReadDecimal(std::string_view text);

// Less than, equal to or greater than 0.
int Compare(const Decimal& one, const Decimal& other);

// The number of a text in units of 1/10000; it never puts two numbers the other way round.
struct DecimalKey {
    static constexpr std::int64_t lowest = -1'000'000'000'000'000'000, highest = -lowest;

    std::int64_t key;
    bool exact; // another number has another key
};
std::optional<DecimalKey> ReadKey(std::string_view text);

} // namespace korvex

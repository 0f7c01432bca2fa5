// Where the list's cells come from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace korvex {

// The cells of records in one column; they hold until the record changes.
class CellSource {
public:
    virtual void Cells(std::span<const std::uint32_t> records, std::int32_t column,
                       std::string_view* texts) = 0;

    std::string_view Cell(std::uint32_t record, std::int32_t column) {
        std::string_view text;
        Cells({&record, 1}, column, &text);
        return text;
    }

protected:
    ~CellSource() = default;
};

// Cells are asked for in pieces of this size: one call for many, and the views stay in the cache.
inline constexpr std::size_t kBatch = 1024;

// Text as lists compare it: bytes, letters of ASCII without their case.
inline constexpr auto kFolded = [] {
    std::array<unsigned char, 256> table{};
    for (std::size_t i = 0; i != table.size(); ++i)
        table[i] = static_cast<unsigned char>(i >= 'A' && i <= 'Z' ? i - 'A' + 'a' : i);
    return table;
}();
inline unsigned char Fold(char character) {
    return kFolded[static_cast<unsigned char>(character)];
}

// Less than, equal to or greater than 0.
int CompareFolded(std::string_view one, std::string_view other);
bool StartsWithFolded(std::string_view text, std::string_view start);
// Whether the text contains `folded`, which has no capital letters.
bool ContainsFolded(std::string_view text, std::string_view folded);
std::size_t CommonPrefixFolded(std::string_view one, std::string_view other);

// Exact decimals of any length, as cells and filters hold them: digits, never a double.
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

// Text as lists compare it: bytes, letters of ASCII without their case.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace korvex {

inline constexpr auto kFolded = [] {
    std::array<unsigned char, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
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
std::string_view Trimmed(std::string_view text);

} // namespace korvex

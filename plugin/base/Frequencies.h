// How often a plan executes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace planfold {

// From one instalment to the next it is so many days, or so many months.
struct Frequency {
    std::string_view word; // the server's
    int days;
    int months;
    bool isDefault; // offered when the server names none
};
inline constexpr Frequency kFrequencies[] = {
    {"daily", 1, 0, true},
    {"weekly", 7, 0, true},
    {"monthly", 0, 1, true},
    {"yearly", 0, 12, false},
};
inline constexpr std::size_t kFrequencyCount = std::size(kFrequencies);

// Null for any other word.
constexpr const Frequency* FindFrequency(std::string_view word) {
    const auto* found = std::ranges::find(kFrequencies, word, &Frequency::word);
    return found == std::end(kFrequencies) ? nullptr : found;
}

// The place of one of them in the table.
constexpr std::size_t IndexOf(const Frequency& frequency) {
    return static_cast<std::size_t>(&frequency - kFrequencies);
}

} // namespace planfold

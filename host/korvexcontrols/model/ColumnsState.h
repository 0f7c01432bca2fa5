// The user's order and widths of a list's columns, kept as one line of text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex {

struct ColumnsState {
    std::vector<int> order;  // columns in the order they are shown
    std::vector<int> widths; // of each column, in pixels at 96 DPI
    bool operator==(const ColumnsState&) const = default;
};

std::string WriteColumns(const ColumnsState& state);
// None when the line is damaged, or of a list with other columns.
std::optional<ColumnsState> ReadColumns(std::string_view line, std::size_t columns);

} // namespace korvex

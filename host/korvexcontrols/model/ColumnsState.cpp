#include "host/korvexcontrols/model/ColumnsState.h"

#include <charconv>

namespace korvex {
namespace {

constexpr char kSeparator = ',', kBetween = ';';
constexpr int kWidest = 10000;

void Write(std::string& line, const std::vector<int>& numbers) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i) line += kSeparator;
        line += std::to_string(numbers[i]);
    }
}

// As many numbers as there are columns, from 0 to `most`.
std::optional<std::vector<int>> Read(std::string_view text, std::size_t columns, int most) {
    std::vector<int> numbers;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        int number = 0;
        const auto [behind, fault] = std::from_chars(at, end, number);
        if (fault != std::errc() || number < 0 || number > most) return std::nullopt;
        numbers.push_back(number);
        if (behind == end) break;
        if (*behind != kSeparator) return std::nullopt;
        at = behind + 1;
    }
    if (numbers.size() != columns) return std::nullopt;
    return numbers;
}

bool NamesEachOnce(const std::vector<int>& order) {
    std::vector<bool> named(order.size());
    for (const int column : order) {
        if (named[static_cast<std::size_t>(column)]) return false;
        named[static_cast<std::size_t>(column)] = true;
    }
    return true;
}

} // namespace

std::string WriteColumns(const ColumnsState& state) {
    std::string line;
    Write(line, state.order);
    line += kBetween;
    Write(line, state.widths);
    return line;
}

std::optional<ColumnsState> ReadColumns(std::string_view line, std::size_t columns) {
    const std::size_t between = line.find(kBetween);
    if (between == line.npos || columns == 0) return std::nullopt;
    auto order = Read(line.substr(0, between), columns, static_cast<int>(columns) - 1);
    auto widths = Read(line.substr(between + 1), columns, kWidest);
    if (!order || !widths || !NamesEachOnce(*order)) return std::nullopt;
    return ColumnsState{std::move(*order), std::move(*widths)};
}

} // namespace korvex

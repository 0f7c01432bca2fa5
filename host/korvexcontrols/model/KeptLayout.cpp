#include "host/korvexcontrols/model/KeptLayout.h"

#include "base/Text.h"

#include <algorithm>
#include <cstdint>

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

// The line must have as many numbers as there are columns, from 0 to `most`.
std::optional<std::vector<int>> Read(std::string_view text, std::size_t columns, int most) {
    std::vector<int> numbers;
    for (std::size_t end = 0; end != text.npos; text.remove_prefix(end == text.npos ? 0 : end + 1)) {
        end = text.find(kSeparator);
        const auto number = base::ReadNumber<int>(text.substr(0, end));
        if (!number || *number < 0 || *number > most) return std::nullopt;
        numbers.push_back(*number);
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

namespace {

// The result is rounded; none of the values is negative.
int Portion(int whole, int part, int of) {
    return static_cast<int>((std::int64_t{whole} * part + of / 2) / of);
}

} // namespace

SplitPosition::SplitPosition(int share) : m_share(std::clamp(share, 0, kWhole)) {}

int SplitPosition::First(int room, Least least) const {
    if (room <= 0) return 0;
    const int both = least.first + least.second;
    if (both >= room) return Portion(room, least.first, both);
    return std::clamp(Portion(room, m_share, kWhole), least.first, room - least.second);
}

void SplitPosition::MoveTo(int first, int room, Least least) {
    if (room <= least.first + least.second) return;
    m_share = Portion(kWhole, std::clamp(first, least.first, room - least.second), room);
}

std::optional<SplitPosition> ReadSplit(std::string_view text) {
    const auto share = base::ReadNumber<int>(text);
    if (!share || *share < 0 || *share > SplitPosition::kWhole) return std::nullopt;
    return SplitPosition(*share);
}

} // namespace korvex

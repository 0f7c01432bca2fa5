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

constexpr std::string_view kSpecial = "%;|,\r\n=";
constexpr char kParts = '|';
constexpr std::string_view kHex = "0123456789ABCDEF";

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (kSpecial.find(character) == kSpecial.npos) {
            escaped += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        escaped += {'%', kHex[byte / kHex.size()], kHex[byte % kHex.size()]};
    }
    return escaped;
}

std::string Unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte =
            text[at] == '%' ? base::ReadNumber<unsigned char>(text.substr(at + 1, 2), 16) : std::nullopt;
        plain += byte ? static_cast<char>(*byte) : text[at];
        if (byte) at += 2;
    }
    return plain;
}

std::vector<std::string_view> Parts(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; end != text.npos; text.remove_prefix(end == text.npos ? 0 : end + 1)) {
        end = text.find(separator);
        parts.push_back(text.substr(0, end));
    }
    return parts;
}

template <class Range, class Write>
std::string Joined(const Range& range, const Write& write) {
    std::string joined;
    for (const auto& value : range) {
        if (!joined.empty()) joined += kParts;
        joined += write(value);
    }
    return joined;
}

std::optional<int> ReadColumn(std::string_view text, std::size_t columns) {
    const auto column = base::ReadNumber<int>(text);
    if (!column || *column < 0 || static_cast<std::size_t>(*column) >= columns) return std::nullopt;
    return column;
}

std::optional<KeptFilter> ReadFilter(std::string_view text, std::size_t columns) {
    const auto parts = Parts(text, kSeparator);
    if (parts.size() != 4) return std::nullopt;
    const auto column = ReadColumn(parts[0], columns);
    const auto id = base::ReadNumber<int>(parts[1]);
    // The owner's is not the user's.
    if (!column || !id || *id < 0 || *id >= static_cast<int>(FilterOperator::exactly)) return std::nullopt;
    KeptFilter filter{*column, {static_cast<FilterOperator>(*id), Unescaped(parts[2]), Unescaped(parts[3])}};
    if (!ColumnFilter::FaultOf(filter.input).empty()) return std::nullopt;
    return filter;
}

} // namespace

std::string WriteRows(const RowsState& state) {
    const auto sort = [](const RowsState::By& by) {
        return std::to_string(by.column) + (by.descending ? "-" : "+");
    };
    const auto filter = [](const KeptFilter& kept) {
        return std::to_string(kept.column) + kSeparator + std::to_string(static_cast<int>(kept.input.id))
               + kSeparator + Escaped(kept.input.value) + kSeparator + Escaped(kept.input.second);
    };
    return Joined(state.sort, sort) + kBetween + Joined(state.filters, filter) + kBetween
           + Escaped(state.condition) + kBetween + Joined(state.switches, Escaped);
}

std::optional<RowsState> ReadRows(std::string_view line, std::size_t columns) {
    const auto parts = Parts(line, kBetween);
    if (parts.size() != 4) return std::nullopt;
    RowsState state;
    if (!parts[0].empty())
        for (const std::string_view by : Parts(parts[0], kParts)) {
            if (by.empty() || (by.back() != '+' && by.back() != '-')) return std::nullopt;
            const auto column = ReadColumn(by.substr(0, by.size() - 1), columns);
            if (!column) return std::nullopt;
            state.sort.push_back({*column, by.back() == '-'});
        }
    if (!parts[1].empty())
        for (const std::string_view text : Parts(parts[1], kParts)) {
            auto filter = ReadFilter(text, columns);
            if (!filter) return std::nullopt;
            state.filters.push_back(std::move(*filter));
        }
    state.condition = Unescaped(parts[2]);
    if (!parts[3].empty())
        for (const std::string_view name : Parts(parts[3], kParts))
            state.switches.push_back(Unescaped(name));
    return state;
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

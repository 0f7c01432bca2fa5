#include "host/korvexcontrols/model/ListSelection.h"

#include <algorithm>

namespace korvex {

// The first range that ends behind the row: it holds the row or lies behind it.
std::size_t RowRanges::FirstEndingBehind(std::uint32_t row) const {
    const auto found = std::ranges::upper_bound(m_ranges, row, {}, &Range::end);
    return static_cast<std::size_t>(found - m_ranges.begin());
}

bool RowRanges::Contains(std::uint32_t row) const {
    const std::size_t at = FirstEndingBehind(row);
    return at < m_ranges.size() && m_ranges[at].begin <= row;
}

void RowRanges::Clear() {
    m_ranges.clear();
    m_count = 0;
}

void RowRanges::Set(std::uint32_t begin, std::uint32_t end, bool on) {
    if (begin >= end) return;
    // Neighbours that only touch are joined as well when rows are added.
    const auto first = std::ranges::lower_bound(m_ranges, begin, {}, &Range::end);
    const auto last = std::ranges::upper_bound(first, m_ranges.end(), end, {}, &Range::begin);
    Range parts[2]{};
    std::size_t count = 0;
    for (auto range = first; range != last; ++range)
        m_count -= range->end - range->begin;
    const std::uint32_t low = first == last ? begin : std::min(begin, first->begin);
    const std::uint32_t high = first == last ? end : std::max(end, (last - 1)->end);
    if (on) {
        parts[count++] = {low, high};
    } else {
        if (low < begin) parts[count++] = {low, begin};
        if (end < high) parts[count++] = {end, high};
    }
    const auto at = m_ranges.erase(first, last);
    m_ranges.insert(at, parts, parts + count);
    for (std::size_t i = 0; i < count; ++i)
        m_count += parts[i].end - parts[i].begin;
}

void RowRanges::InsertRow(std::uint32_t row) {
    const std::size_t at = FirstEndingBehind(row);
    for (std::size_t i = at; i < m_ranges.size(); ++i) {
        ++m_ranges[i].end;
        if (m_ranges[i].begin >= row) ++m_ranges[i].begin;
    }
    if (at == m_ranges.size() || m_ranges[at].begin >= row) return;
    const Range behind{row + 1, m_ranges[at].end};
    m_ranges[at].end = row;
    m_ranges.insert(m_ranges.begin() + static_cast<std::ptrdiff_t>(at) + 1, behind);
}

void RowRanges::RemoveRow(std::uint32_t row) {
    Set(row, row + 1, false);
    const std::size_t at = FirstEndingBehind(row);
    for (std::size_t i = at; i < m_ranges.size(); ++i) {
        --m_ranges[i].begin;
        --m_ranges[i].end;
    }
    if (at == 0 || at == m_ranges.size() || m_ranges[at - 1].end != m_ranges[at].begin) return;
    m_ranges[at - 1].end = m_ranges[at].end;
    m_ranges.erase(m_ranges.begin() + static_cast<std::ptrdiff_t>(at));
}

RowRanges RowRanges::Difference(const RowRanges& one, const RowRanges& other) {
    // Every border of either set switches between "in one" and "in both or none".
    std::vector<std::uint32_t> borders;
    borders.reserve(2 * (one.m_ranges.size() + other.m_ranges.size()));
    const auto next = [](const RowRanges& set, std::size_t border) {
        if (border / 2 >= set.m_ranges.size()) return UINT32_MAX;
        const Range& range = set.m_ranges[border / 2];
        return border % 2 ? range.end : range.begin;
    };
    std::size_t i = 0, j = 0;
    for (;;) {
        const std::uint32_t a = next(one, i), b = next(other, j), border = std::min(a, b);
        if (border == UINT32_MAX) break;
        i += a == border;
        j += b == border;
        if (a != b) borders.push_back(border);
    }
    RowRanges result;
    for (std::size_t k = 0; k + 1 < borders.size(); k += 2) {
        result.m_ranges.push_back({borders[k], borders[k + 1]});
        result.m_count += borders[k + 1] - borders[k];
    }
    return result;
}

void ListSelection::Remember(std::uint32_t record, bool on) {
    if (on && record >= m_hidden.size()) m_hidden.resize(record + std::size_t{1});
    if (record < m_hidden.size()) m_hidden[record] = on;
}

void ListSelection::Select(std::uint32_t begin, std::uint32_t end, bool on) {
    m_hidden.clear();
    m_rows.Set(begin, end, on);
}

void ListSelection::RowCame(std::uint32_t record, std::uint32_t row) {
    m_rows.InsertRow(row);
    if (!IsRemembered(record)) return;
    m_rows.Set(row, row + 1, true);
    Forget(record);
}

void ListSelection::RowWasHidden(std::uint32_t record, std::uint32_t row) {
    Remember(record, m_rows.Contains(row));
    m_rows.RemoveRow(row);
}

void ListSelection::RowMoved(std::uint32_t from, std::uint32_t to) {
    const bool selected = m_rows.Contains(from);
    m_rows.RemoveRow(from);
    m_rows.InsertRow(to);
    m_rows.Set(to, to + 1, selected);
}

void ListSelection::RememberAll(std::span<const std::uint32_t> selected) {
    for (const std::uint32_t record : selected)
        Remember(record, true);
}

void ListSelection::SelectRemembered(std::span<const std::uint32_t> shown) {
    m_rows.Clear();
    for (std::uint32_t row = 0; row < shown.size(); ++row) {
        if (!IsRemembered(shown[row])) continue;
        const std::uint32_t begin = row;
        for (; row < shown.size() && IsRemembered(shown[row]); ++row)
            Forget(shown[row]);
        m_rows.Set(begin, row, true);
    }
}

} // namespace korvex

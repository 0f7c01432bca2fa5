#include "host/korvexcontrols/model/ListSums.h"

#include <algorithm>

namespace korvex {
namespace {

constexpr std::int64_t kKeyUnits = 10000, kKeyUnitsOfPaise = kKeyUnits / 100;

// Of what is no number nothing.
std::uint64_t Units(std::string_view cell, std::int64_t keyUnits) {
    const auto key = ReadKey(cell);
    return key ? static_cast<std::uint64_t>(key->key / keyUnits) : 0;
}

} // namespace

void ListSums::Begin(const Columns& columns) {
    m_columns = columns;
    m_shown.clear();
    m_selected.clear();
    m_known.clear();
    for (std::uint32_t row = 0; row < m_model.RowCount(); ++row)
        Touch(m_model.RecordAt(row));
}

void ListSums::Touch(std::uint32_t record) {
    if (record >= m_known.size()) {
        // A sweep that is over stays so.
        const bool swept = m_sweep >= m_known.size();
        m_known.resize(record + std::size_t{1});
        if (swept) m_sweep = m_known.size();
    }
    if (!std::exchange(m_known[record].dirty, true)) m_dirty.push_back(record);
}

void ListSums::Note(const ListChange& change, std::uint32_t record) {
    if (!IsOn()) return;
    if (record != kNone) Touch(record);
    if (change.kind == ListChange::everything) {
        m_sweep = 0;
        return SelectionChanged();
    }
    // The count of the selection must not step over the row that moves up; one that it meets again it knows.
    const bool goes = change.kind == ListChange::removed || change.kind == ListChange::moved;
    if (goes && m_row != kNone && change.row < m_row) --m_row;
}

void ListSums::SelectionChanged() {
    ++m_pass;
    m_row = 0;
    for (Side& side : m_selected)
        side = {side.name};
}

void ListSums::Add(Sides& sides, const Known& known, bool add) {
    Side& side = sides[known.side];
    side.rows += add ? 1u : ~0u;
    side.paise += add ? known.paise : 0 - known.paise;
    side.quantity += add ? known.quantity : 0 - known.quantity;
}

std::uint8_t ListSums::SideOf(std::string_view name) {
    auto found = std::ranges::find(m_shown, name, &Side::name);
    if (found == m_shown.end() && m_shown.size() < kMostSides) {
        m_selected.push_back({std::string(name)});
        found = m_shown.insert(found, {std::string(name)});
    }
    return static_cast<std::uint8_t>(std::min<std::ptrdiff_t>(found - m_shown.begin(), kMostSides - 1));
}

void ListSums::Look(std::span<const std::uint32_t> records) {
    std::array<std::string_view, kBatch> sides, amounts, quantities;
    std::array<std::uint32_t, kBatch> shown;
    std::size_t count = 0;
    for (const std::uint32_t record : records) {
        Known& known = m_known[record];
        if (known.side != kNotShown) {
            Add(m_shown, known, false);
            if (known.pass == m_pass) Add(m_selected, known, false);
        }
        known = {};
        if (m_model.ShownRowOf(record) != kNone) shown[count++] = record;
    }
    const std::span those(shown.data(), count);
    m_source.Cells(those, m_columns.side, sides.data());
    m_source.Cells(those, m_columns.amount, amounts.data());
    m_source.Cells(those, m_columns.quantity, quantities.data());
    for (std::size_t i = 0; i < count; ++i) {
        Known& known = m_known[shown[i]];
        known.side = SideOf(sides[i]);
        known.paise = Units(amounts[i], kKeyUnitsOfPaise);
        known.quantity = Units(quantities[i], kKeyUnits);
        Add(m_shown, known, true);
        if (!CountsSelection() || !m_model.Selection().Contains(m_model.ShownRowOf(shown[i]))) continue;
        known.pass = m_pass;
        Add(m_selected, known, true);
    }
}

// Those that were counted already are passed over.
void ListSums::CountSelected(std::uint32_t most) {
    const auto& ranges = m_model.Selection().Ranges();
    for (auto range = std::ranges::upper_bound(ranges, m_row, {}, &RowRanges::Range::end);
         range != ranges.end(); ++range)
        for (m_row = std::max(m_row, range->begin); m_row < range->end; ++m_row) {
            if (most-- == 0) return;
            Known& known = m_known[m_model.ShownAt(m_row)];
            if (known.side == kNotShown || known.pass == m_pass) continue;
            known.pass = m_pass;
            Add(m_selected, known, true);
        }
    m_row = kNone;
}

bool ListSums::Work(std::uint32_t most) {
    if (!IsOn()) return false;
    std::array<std::uint32_t, kBatch> batch;
    while (most > 0 && (!m_dirty.empty() || m_sweep < m_known.size())) {
        std::size_t count = 0;
        const std::size_t room = std::min<std::size_t>(most, batch.size());
        for (; count < room && !m_dirty.empty(); m_dirty.pop_back())
            batch[count++] = m_dirty.back();
        for (; m_dirty.empty() && count < room && m_sweep < m_known.size(); ++m_sweep)
            batch[count++] = static_cast<std::uint32_t>(m_sweep);
        // One that is in it twice would be counted twice.
        std::ranges::sort(batch.begin(), batch.begin() + static_cast<std::ptrdiff_t>(count));
        const auto end = std::unique(batch.begin(), batch.begin() + static_cast<std::ptrdiff_t>(count));
        Look({batch.begin(), end});
        most -= static_cast<std::uint32_t>(count);
    }
    if (most > 0 && CountsSelection() && m_row != kNone) CountSelected(most);
    return !IsComplete();
}

} // namespace korvex

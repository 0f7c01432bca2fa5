#include "host/korvexcontrols/model/ListRows.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvex {

std::uint32_t ListRows::ShownAt(std::uint32_t row) const {
    if (row >= ShownCount()) return kNone;
    if (IsSorted()) return m_sorted.RecordAt(row);
    if (!IsFiltered()) return m_order.RecordAt(row);
    return m_order.RecordOfSlot(m_passing.Select(ShownCount() - 1 - row));
}

std::uint32_t ListRows::ShownRowOf(std::uint32_t record) const {
    if (!m_order.Contains(record)) return kNone;
    if (IsSorted()) return m_sorted.Contains(record) ? m_sorted.RowOf(record) : kNone;
    if (!IsFiltered()) return m_order.RowOf(record);
    const std::uint32_t slot = m_order.SlotOf(record);
    return m_passing.Test(slot) ? ShownCount() - 1 - m_passing.Rank(slot) : kNone;
}

std::vector<std::uint32_t> ListRows::ShownRecords() const {
    if (IsSorted()) return m_sorted.Records();
    return IsFiltered() ? m_order.RecordsOf(m_passing) : m_order.Records();
}

std::uint32_t ListRows::Show(std::uint32_t record) {
    if (IsSorted()) {
        SortOrder::Probe probe(m_sort, record);
        return m_sorted.Insert(record, m_sort.MakeKey(record),
                               [&](std::uint32_t other) { return probe.StandsBefore(other); });
    }
    if (IsFiltered()) m_passing.Set(m_order.SlotOf(record), true);
    return ShownRowOf(record);
}

std::uint32_t ListRows::Hide(std::uint32_t record) {
    if (IsSorted()) return m_sorted.Contains(record) ? m_sorted.Erase(record) : kNone;
    const std::uint32_t row = ShownRowOf(record);
    if (IsFiltered()) m_passing.Set(m_order.SlotOf(record), false);
    return row;
}

std::uint32_t ListRows::InsertFront(std::uint32_t record) {
    if (m_order.IsSparse()) m_order.Compact(m_passing);
    m_order.Append(record);
    if (IsFiltered() && !IsSorted()) m_passing.Append(false);
    if (!m_filters.Pass(m_source, record)) return kNone;
    if (IsSorted()) return Show(record);
    if (IsFiltered()) m_passing.Set(m_order.SlotOf(record), true);
    return 0; // of the shown rows, too, it is the first
}

std::uint32_t ListRows::Remove(std::uint32_t record) {
    const std::uint32_t row = Hide(record);
    m_order.Remove(record);
    return row;
}

void ListRows::RemoveAll() {
    m_order.Clear();
    m_sorted = SortedRows();
    m_passing.Clear();
}

// A changed record is taken out by its place, as its cells no longer tell it, and put in again.
ListRows::Move ListRows::Update(std::uint32_t record) {
    const bool passes = m_filters.Pass(m_source, record);
    if (passes && !IsSorted())
        if (const std::uint32_t row = ShownRowOf(record); row != kNone) return {row, row};
    const std::uint32_t from = Hide(record);
    return {from, passes ? Show(record) : kNone};
}

std::vector<std::uint32_t> ListRows::Passing() const {
    if (!IsFiltered()) return m_order.Records();
    std::vector<std::uint32_t> passing;
    std::array<std::uint32_t, kBatch> piece;
    std::size_t size = 0;
    const auto judge = [&] {
        const auto good = m_filters.Passing(m_source, {piece.data(), std::exchange(size, 0)});
        passing.insert(passing.end(), good.begin(), good.end());
    };
    m_order.ForRecords([&](std::uint32_t record) {
        piece[size++] = record;
        if (size == kBatch) judge();
    });
    judge();
    return passing;
}

void ListRows::Arrange() {
    m_sorted = SortedRows();
    m_passing.Clear();
    if (!IsSorted() && !IsFiltered()) return;
    auto records = Passing();
    if (IsSorted()) {
        const auto keys = m_sort.Sort(records);
        m_sorted.Assign(records, keys);
    } else {
        std::vector<std::uint32_t> slots(records.size());
        std::ranges::transform(records, slots.begin(),
                               [&](std::uint32_t record) { return m_order.SlotOf(record); });
        m_passing.Assign(m_order.Slots(), slots);
    }
}

std::uint32_t ListRows::Find(const Search& search, const std::function<bool(std::string_view)>& wanted) const {
    const std::uint32_t count = ShownCount(), steps = std::min(search.steps, count);
    const auto rowAt = [&](std::uint32_t step) {
        const std::uint64_t from = search.start % count;
        return static_cast<std::uint32_t>((search.forward ? from + step : from + count - step) % count);
    };
    constexpr auto batch = static_cast<std::uint32_t>(kBatch);
    std::array<std::uint32_t, kBatch> records;
    std::array<std::string_view, kBatch> cells;
    for (std::uint32_t at = 0; at < steps; at += batch) {
        const std::uint32_t size = std::min(batch, steps - at);
        for (std::uint32_t i = 0; i < size; ++i)
            records[i] = ShownAt(rowAt(at + i));
        std::uint32_t first = size;
        for (const std::int32_t column : search.columns) {
            m_source.Cells({records.data(), first}, column, cells.data());
            const auto end = cells.begin() + first;
            first = static_cast<std::uint32_t>(std::find_if(cells.begin(), end, wanted) - cells.begin());
        }
        if (first < size) return rowAt(at + first);
    }
    return kNone;
}

} // namespace korvex

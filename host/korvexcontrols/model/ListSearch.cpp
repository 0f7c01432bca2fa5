// Looking through a list's shown rows.
#include "host/korvexcontrols/model/ListModel.h"

#include <algorithm>
#include <array>

namespace korvex {

std::vector<std::uint32_t> ListModel::ShownRecords() const {
    std::vector<std::uint32_t> records;
    records.reserve(ShownCount());
    for (std::uint32_t row = 0; row < ShownCount(); ++row)
        records.push_back(ShownAt(row));
    return records;
}

std::uint32_t ListModel::Find(const Search& search, const std::function<bool(std::string_view)>& wanted) const {
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

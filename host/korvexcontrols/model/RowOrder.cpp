#include "host/korvexcontrols/model/RowOrder.h"

#include <algorithm>
#include <utility>

namespace korvex {

void RowOrder::Append(std::uint32_t record) {
    if (record >= m_slotOf.size())
        m_slotOf.resize(std::max<std::size_t>(record + std::size_t{1}, m_slotOf.size() * 2), kNone);
    m_recordAt.push_back(record);
    m_slotOf[record] = Slots();
    m_live.Append(true);
}

void RowOrder::Remove(std::uint32_t record) {
    m_live.Set(std::exchange(m_slotOf[record], kNone), false);
}

void RowOrder::Clear() {
    m_live.Clear();
    m_recordAt.clear();
    m_slotOf.clear();
}

std::vector<std::uint32_t> RowOrder::Records() const {
    std::vector<std::uint32_t> records;
    records.reserve(Count());
    for (std::uint32_t slot = Slots(); slot-- > 0;)
        if (m_live.Test(slot)) records.push_back(m_recordAt[slot]);
    return records;
}

void RowOrder::Compact(RankedBits& companion) {
    RankedBits live, kept;
    std::uint32_t to = 0;
    for (std::uint32_t slot = 0; slot < Slots(); ++slot) {
        if (!m_live.Test(slot)) continue;
        const std::uint32_t record = m_recordAt[slot];
        m_slotOf[record] = to;
        m_recordAt[to++] = record;
        live.Append(true);
        if (companion.Size()) kept.Append(companion.Test(slot));
    }
    m_recordAt.resize(to);
    m_live = std::move(live);
    companion = std::move(kept);
}

} // namespace korvex

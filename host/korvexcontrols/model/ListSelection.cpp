#include "host/korvexcontrols/model/ListSelection.h"

namespace korvex {

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

#include "plugin/changes/CsvText.h"

#include "base/Text.h"

#include <algorithm>

namespace planfold {

bool CsvRow::IsBlank() const {
    return std::ranges::all_of(cells, [](const std::string& cell) { return cell.empty(); });
}

CsvText::CsvText(std::string_view text) : m_rest(base::WithoutMark(text)) {
    const std::string_view first = m_rest.substr(0, m_rest.find_first_of("\r\n"));
    for (const char separator : {';', '\t'})
        if (std::ranges::count(first, separator) > std::ranges::count(first, m_separator))
            m_separator = separator;
}

bool CsvText::Next(CsvRow& row) {
    row.cells.clear();
    row.line = m_line;
    if (m_rest.empty()) return false;
    while (true) {
        row.cells.push_back(TakeCell());
        if (m_rest.empty()) return true;
        const char end = m_rest.front();
        m_rest.remove_prefix(1);
        if (end == m_separator) {
            if (!m_rest.empty()) continue;
            row.cells.emplace_back();
            return true;
        }
        if (end == '\r' && m_rest.starts_with('\n')) m_rest.remove_prefix(1);
        ++m_line;
        return true;
    }
}

// Up to what ends it, which stays.
std::string CsvText::TakeCell() {
    std::string cell;
    const bool quoted = m_rest.starts_with('"');
    if (quoted) TakeQuoted(cell);
    const char ends[] = {m_separator, '\r', '\n'};
    const std::size_t end = std::min(m_rest.find_first_of(std::string_view(ends, 3)), m_rest.size());
    if (quoted && end > 0) m_torn = true;
    cell += m_rest.substr(0, end);
    m_rest.remove_prefix(end);
    return cell;
}

void CsvText::TakeQuoted(std::string& cell) {
    m_rest.remove_prefix(1);
    while (true) {
        const std::size_t end = m_rest.find('"');
        const std::string_view part = m_rest.substr(0, end);
        m_line += static_cast<int>(std::ranges::count(part, '\n'));
        cell += part;
        const bool isOpen = end == m_rest.npos;
        m_torn = m_torn || isOpen;
        m_rest.remove_prefix(isOpen ? m_rest.size() : end + 1);
        if (isOpen || !m_rest.starts_with('"')) return;
        cell += '"';
        m_rest.remove_prefix(1);
    }
}

} // namespace planfold

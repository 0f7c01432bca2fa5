#include "plugin/import/CsvTable.h"

#include "plugin/base/Text.h"
#include "plugin/import/Encoding.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr char kTooLong[] = "the line is longer than 65536 characters, or a quote in it is not closed";
constexpr char kStrayQuote[] = "there is text behind a closing quote";
constexpr char kTooManyColumns[] = "the line has more than 256 columns";
constexpr std::string_view kSaysDelimiter = "sep=";

} // namespace

CsvTable::CsvTable(std::string_view bytes) : m_text(TextInUtf8(bytes, m_decoded)) {
    m_undoubled.reserve(kLongestRow);
    ReadSaidDelimiter();
}

CsvTable::CsvTable(std::string_view text, char delimiter) : m_text(text), m_delimiter(delimiter) {
    m_undoubled.reserve(kLongestRow);
}

void CsvTable::ReadSaidDelimiter() {
    const std::size_t length = kSaysDelimiter.size();
    if (!StartsWithIgnoringCase(m_text, kSaysDelimiter) || m_text.size() < length + 2) return;
    const char end = m_text[length + 1];
    if (end != '\r' && end != '\n') return;
    m_delimiter = m_text[length];
    m_isSaid = true;
    LeaveLineOf(0);
}

void CsvTable::SetDelimiter(char delimiter) {
    if (!m_isSaid) m_delimiter = delimiter;
}

bool CsvTable::Next(TableRow& row) {
    row.cells.clear();
    row.fault = nullptr;
    if (m_at >= m_text.size() || !m_fault.empty()) return false;
    row.line = m_line;
    if (m_line > kMostTableRows) {
        m_fault = Format("it has more than %d rows", kMostTableRows);
        return false;
    }
    m_undoubled.clear();
    const std::size_t start = m_at;
    if (const auto fault = ReadCells(row)) {
        row.cells.clear();
        row.fault = *fault;
        m_line = row.line;
        LeaveLineOf(start);
    }
    return true;
}

// A quote that is never closed costs its own line, not the rest of the file.
void CsvTable::LeaveLineOf(std::size_t start) {
    const std::size_t end = m_text.find('\n', start);
    m_at = end == m_text.npos ? m_text.size() : end + 1;
    ++m_line;
}

// Up to the line's end, and past it.
std::optional<const char*> CsvTable::ReadCells(TableRow& row) {
    const std::size_t limit = std::min(m_text.size(), m_at + kLongestRow);
    const char delimiter = m_delimiter;
    const auto endOfCell = [delimiter](char c) { return c == delimiter || c == '\n' || c == '\r'; };
    while (true) {
        if (row.cells.size() == kMostTableColumns) return kTooManyColumns;
        if (m_at < limit && m_text[m_at] == '"') {
            if (!ReadQuoted(row, limit)) return kTooLong;
            if (m_at < m_text.size() && !endOfCell(m_text[m_at])) return kStrayQuote;
        } else {
            const std::size_t start = m_at;
            const char* at = m_text.data() + start;
            const char* const stop = m_text.data() + limit;
            while (at < stop && !endOfCell(*at))
                ++at;
            m_at = static_cast<std::size_t>(at - m_text.data());
            row.cells.push_back({m_text.substr(start, m_at - start)});
        }
        if (m_at == m_text.size()) return std::nullopt;
        if (m_at == limit) return kTooLong;
        const char end = m_text[m_at++];
        if (end == m_delimiter) continue;
        if (end == '\r' && m_at < m_text.size() && m_text[m_at] == '\n') ++m_at;
        ++m_line;
        return std::nullopt;
    }
}

// False when the quote is not closed.
bool CsvTable::ReadQuoted(TableRow& row, std::size_t limit) {
    const std::size_t start = ++m_at;
    const std::size_t kept = m_undoubled.size();
    std::size_t copied = start;
    for (; m_at < limit; ++m_at) {
        if (m_text[m_at] == '\n') ++m_line;
        if (m_text[m_at] != '"') continue;
        const bool isDoubled = m_at + 1 < m_text.size() && m_text[m_at + 1] == '"';
        if (!isDoubled) break;
        ++m_at;
        m_undoubled.append(m_text.substr(copied, m_at - copied));
        copied = m_at + 1;
    }
    if (m_at >= limit) return false;
    std::string_view text = m_text.substr(start, m_at - start);
    if (copied != start) {
        m_undoubled.append(m_text.substr(copied, m_at - copied));
        text = std::string_view(m_undoubled).substr(kept);
    }
    row.cells.push_back({text});
    ++m_at;
    return true;
}

} // namespace planfold

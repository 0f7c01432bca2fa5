#include "host/korvexcontrols/model/Export.h"

#include "host/korvexcontrols/model/CellDates.h"

#include <algorithm>

namespace korvex {
namespace {

bool MustBeDisarmed(std::string_view cell, ValueType type) {
    constexpr std::string_view risky = "=+-@\t\r";
    if (cell.empty() || risky.find(cell.front()) == risky.npos) return false;
    return !IsNumeric(type) || !ReadDecimal(cell);
}

void AddQuoted(std::string& text, std::string_view cell, bool disarm) {
    if (cell.find_first_of(",\"\r\n") == cell.npos) {
        if (disarm) text += '\'';
        text += cell;
        return;
    }
    text += '"';
    if (disarm) text += '\'';
    for (const char character : cell) {
        if (character == '"') text += '"';
        text += character;
    }
    text += '"';
}

void AddOnOneLine(std::string& text, std::string_view cell, bool disarm) {
    if (disarm) text += '\'';
    const std::size_t begin = text.size();
    text += cell;
    const auto breaks = [](char character) {
        return character == '\t' || character == '\r' || character == '\n';
    };
    std::replace_if(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), breaks, ' ');
}

struct Spelling {
    char separator;
    void (*add)(std::string& text, std::string_view cell, bool disarm);
    bool isoDates; // a program reads it
};
const Spelling& SpellingOf(Notation notation) {
    static constexpr Spelling spellings[] = {{',', AddQuoted, true}, {'\t', AddOnOneLine, false}};
    return spellings[static_cast<std::size_t>(notation)];
}

void AddCell(std::string& text, std::string_view cell, ValueType type, const Spelling& spelling) {
    const bool mayBeDate = type == ValueType::text || type == ValueType::date;
    if (const auto date = spelling.isoDates && mayBeDate ? IsoDate(cell) : std::nullopt)
        return spelling.add(text, *date, false);
    spelling.add(text, cell, MustBeDisarmed(cell, type));
}

} // namespace

RowsText::RowsText(Notation notation, std::vector<ExportColumn> columns, std::vector<std::uint32_t> records)
    : m_notation(notation), m_columns(std::move(columns)), m_records(std::move(records)) {
    const Spelling& spelling = SpellingOf(m_notation);
    for (const ExportColumn& column : m_columns) {
        if (&column != m_columns.data()) m_text += spelling.separator;
        spelling.add(m_text, column.heading, MustBeDisarmed(column.heading, ValueType::text));
    }
    m_text += "\r\n";
}

void RowsText::AddSome(CellSource& source, const std::function<bool(std::uint32_t)>& gone) {
    const auto some = std::span(m_records).subspan(m_done, std::min(kBatch, m_records.size() - m_done));
    m_done += some.size();
    const auto end = std::remove_if(some.begin(), some.end(), gone);
    AddRows(source, some.first(static_cast<std::size_t>(end - some.begin())));
}

// The source is asked once a column for many rows; the rows are then put together.
void RowsText::AddRows(CellSource& source, std::span<const std::uint32_t> records) {
    const Spelling& spelling = SpellingOf(m_notation);
    std::vector<std::string_view> cells(m_columns.size() * records.size());
    for (std::size_t i = 0; i < m_columns.size(); ++i)
        source.Cells(records, m_columns[i].column, &cells[i * records.size()]);
    for (std::size_t row = 0; row < records.size(); ++row) {
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            if (i) m_text += spelling.separator;
            AddCell(m_text, cells[i * records.size() + row], m_columns[i].type, spelling);
        }
        m_text += "\r\n";
    }
}

} // namespace korvex

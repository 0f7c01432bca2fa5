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

struct Notation {
    char separator;
    void (*add)(std::string& text, std::string_view cell, bool disarm);
    bool isoDates; // a program reads it
};
constexpr Notation kCsv{',', AddQuoted, true}, kTabbed{'\t', AddOnOneLine, false};

void AddCell(std::string& text, std::string_view cell, ValueType type, const Notation& notation) {
    const bool mayBeDate = type == ValueType::text || type == ValueType::date;
    if (const auto date = notation.isoDates && mayBeDate ? IsoDate(cell) : std::nullopt)
        return notation.add(text, *date, false);
    notation.add(text, cell, MustBeDisarmed(cell, type));
}

// The source is asked once a column for many rows; the rows are then put together.
void AddRows(std::string& text, CellSource& source, std::span<const ExportColumn> columns,
             std::span<const std::uint32_t> records, const Notation& notation) {
    std::vector<std::string_view> cells(columns.size() * records.size());
    for (std::size_t i = 0; i < columns.size(); ++i)
        source.Cells(records, columns[i].column, &cells[i * records.size()]);
    for (std::size_t row = 0; row < records.size(); ++row) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i) text += notation.separator;
            AddCell(text, cells[i * records.size() + row], columns[i].type, notation);
        }
        text += "\r\n";
    }
}

std::string Compose(CellSource& source, std::span<const ExportColumn> columns,
                    std::span<const std::uint32_t> records, const Notation& notation) {
    std::string text;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i) text += notation.separator;
        notation.add(text, columns[i].heading, MustBeDisarmed(columns[i].heading, ValueType::text));
    }
    text += "\r\n";
    for (std::size_t at = 0; at < records.size(); at += kBatch)
        AddRows(text, source, columns, records.subspan(at, std::min(kBatch, records.size() - at)), notation);
    return text;
}

} // namespace

std::string ToCsv(CellSource& source, std::span<const ExportColumn> columns,
                  std::span<const std::uint32_t> records) {
    return Compose(source, columns, records, kCsv);
}

std::string ToTabbed(CellSource& source, std::span<const ExportColumn> columns,
                     std::span<const std::uint32_t> records) {
    return Compose(source, columns, records, kTabbed);
}

} // namespace korvex

#include "plugin/changes/ChangeFile.h"

#include "plugin/base/Text.h"
#include "plugin/changes/Cells.h"
#include "plugin/orderbook/BookLists.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::string_view kStampHeading = "As Exported";
constexpr char kAgain[] = " Export the registrations with \"Export for Changes...\", and keep its columns.";

std::string_view HeadingOf(const BookColumn& column) {
    return Restored(column.heading);
}

void AddCell(std::string& text, std::string_view cell) {
    // A negative number is no formula.
    const bool disarm = !cell.empty()
                        && std::string_view("=+-@\t\r").find(cell.front()) != std::string_view::npos
                        && !PlainNumber(cell, false);
    const bool quoted = cell.find_first_of(",;\"\r\n") != cell.npos;
    if (quoted) text += '"';
    if (disarm) text += '\'';
    for (const char character : cell) {
        if (character == '"') text += '"';
        text += character;
    }
    if (quoted) text += '"';
}

} // namespace

std::uint64_t PrintOf(const sOrderinfo& record) {
    std::uint64_t print = 14695981039346656037u;
    const auto add = [&](unsigned char character) { print = (print ^ character) * 1099511628211u; };
    for (const BookColumn& column : kRegisteredColumns) {
        if (column.field == OrderField::accountName) continue; // the host's, which may not know it every day
        for (const char character : record.Text(column.field))
            add(static_cast<unsigned char>(character));
        add(0);
    }
    return print;
}

std::optional<OrderField> ValueField(const sOrderinfo& record) {
    const std::string_view investType = record.Text(OrderField::investType);
    if (investType == "qty") return OrderField::quantity;
    if (investType == "value") return OrderField::amount;
    return std::nullopt;
}

Stamp Stamp::Of(const sOrderinfo& record, bool serverPeriods) {
    const auto value = ValueField(record);
    return {std::string(value ? record.Text(*value) : std::string_view()),
            std::string(record.Text(PeriodsField(record, serverPeriods))), PrintOf(record)};
}

std::optional<Stamp> Stamp::Read(std::string_view cell) {
    const std::string_view text = Restored(cell);
    const std::size_t one = text.find('|');
    const std::size_t two = one == text.npos ? one : text.find('|', one + 1);
    if (two == text.npos) return std::nullopt;
    const auto print = base::ReadNumber<std::uint64_t>(text.substr(two + 1), 16);
    if (!print || text.size() - two - 1 != 16) return std::nullopt;
    return Stamp{std::string(text.substr(0, one)), std::string(text.substr(one + 1, two - one - 1)), *print};
}

std::string Stamp::Text() const {
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[(print >> shift) & 15];
    return value + '|' + periods + '|' + digits;
}

std::string ChangeFileText(const OrderCache& book, std::span<const RecordId> records, bool serverPeriods) {
    std::string text;
    for (const BookColumn& column : kRegisteredColumns) {
        AddCell(text, HeadingOf(column));
        text += ',';
    }
    text.append(kStampHeading).append("\r\n");
    for (const RecordId id : records) {
        for (const BookColumn& column : kRegisteredColumns) {
            const std::string_view cell = book[id].Text(column.field);
            const auto date = column.type == ValueType::text ? DateInFigures(cell) : std::nullopt;
            AddCell(text, date ? std::string_view(*date) : cell);
            text += ',';
        }
        AddCell(text, Stamp::Of(book[id], serverPeriods).Text());
        text += "\r\n";
    }
    return text;
}

ChangeFile::ChangeFile(std::string text) : m_text(std::move(text)), m_csv(m_text) {
    CsvRow headings;
    if (base::IsUtf16(m_text))
        m_fault = "The file is in UTF-16. Save it as CSV in UTF-8.";
    else if (!m_csv.Next(headings))
        m_fault = "The file is empty.";
    else
        ReadHeadings(headings.cells);
}

void ChangeFile::ReadHeadings(const std::vector<std::string>& headings) {
    std::array<int, kRegisteredColumns.size()> counts{};
    int stamps = 0;
    for (const std::string& cell : headings) {
        const std::string_view heading = Restored(cell);
        const auto column = std::ranges::find_if(kRegisteredColumns, [&](const BookColumn& one) {
            return EqualsIgnoringCase(HeadingOf(one), heading);
        });
        m_columns.push_back(kOtherColumn);
        if (EqualsIgnoringCase(heading, kStampHeading)) {
            m_columns.back() = kStampColumn;
            ++stamps;
        } else if (column != kRegisteredColumns.end()) {
            m_columns.back() = static_cast<int>(column - kRegisteredColumns.begin());
            ++counts[static_cast<std::size_t>(m_columns.back())];
        } else if (!heading.empty()) {
            m_others.append(m_others.empty() ? "" : ", ").append(heading);
        }
    }
    m_hasStamps = stamps > 0;
    for (std::size_t i = 0; i < counts.size() && m_fault.empty(); ++i) {
        const BookColumn& column = kRegisteredColumns[i];
        const bool needed = !m_hasStamps || column.field == OrderField::registrationNumber;
        const std::string name = '"' + std::string(HeadingOf(column)) + '"';
        if (counts[i] > 1) m_fault = "The column " + name + " appears twice." + kAgain;
        if (!counts[i] && needed) m_fault = "The column " + name + " is missing." + kAgain;
    }
    if (stamps > 1) m_fault = "The column \"" + std::string(kStampHeading) + "\" appears twice." + kAgain;
}

bool ChangeFile::Next(Row& row) {
    CsvRow cells;
    do {
        if (!m_fault.empty() || !m_csv.Next(cells)) return false;
    } while (cells.IsBlank());
    if (m_csv.IsTorn()) {
        m_fault = Format("Line %d has a quote that is not closed, or text behind one.", cells.line);
        return false;
    }
    row = {};
    row.line = cells.line;
    cells.cells.resize(std::max(cells.cells.size(), m_columns.size()));
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        if (m_columns[i] >= 0)
            row.cells[kRegisteredColumns[static_cast<std::size_t>(m_columns[i])].field] =
                std::move(cells.cells[i]);
        if (m_columns[i] == kStampColumn) row.stamp = std::move(cells.cells[i]);
    }
    return true;
}

} // namespace planfold

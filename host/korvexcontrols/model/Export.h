// Rows as text for other programs. No cell that a spreadsheet would run as a formula goes out as one: such a
// cell gets an apostrophe in front, unless it is a plain number in a column of numbers.
#pragma once

#include "host/korvexcontrols/model/Cells.h"
#include "host/korvexcontrols/model/ColumnFilter.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace korvex {

struct ExportColumn {
    std::int32_t column;
    std::string heading;
    ValueType type;
};

enum class Notation {
    csv,    // comma-separated values as RFC 4180 has them; dates as 2027-03-05
    tabbed, // for the clipboard: cells between tabs; tabs and line breaks inside a cell become blanks
};

// Rows under a line of headings, put together in pieces.
class RowsText {
public:
    RowsText(Notation notation, std::vector<ExportColumn> columns, std::vector<std::uint32_t> records);

    std::size_t Total() const { return m_records.size(); }
    std::size_t Done() const { return m_done; }
    // The next rows, as they are now. Those that `gone` tells of are left out.
    void AddSome(CellSource& source, const std::function<bool(std::uint32_t record)>& gone);
    const std::string& Text() const { return m_text; }

private:
    void AddRows(CellSource& source, std::span<const std::uint32_t> records);

    Notation m_notation;
    std::vector<ExportColumn> m_columns;
    std::vector<std::uint32_t> m_records;
    std::size_t m_done = 0;
    std::string m_text;
};

} // namespace korvex

// Rows as text for other programs. No cell that a spreadsheet would run as a formula goes out as one: such a
// cell gets an apostrophe in front, unless it is a plain number in a column of numbers.
#pragma once

#include "host/korvexcontrols/model/Cells.h"
#include "host/korvexcontrols/model/ColumnFilter.h"

#include <string>
#include <vector>

namespace korvex {

struct ExportColumn {
    std::int32_t column;
    std::string heading;
    ValueType type;
};

// Comma-separated values as RFC 4180 has them, under a line of headings; dates as 2027-03-05.
std::string ToCsv(CellSource& source, std::span<const ExportColumn> columns,
                  std::span<const std::uint32_t> records);
// For the clipboard: cells between tabs; tabs and line breaks inside a cell become blanks.
std::string ToTabbed(CellSource& source, std::span<const ExportColumn> columns,
                     std::span<const std::uint32_t> records);

} // namespace korvex

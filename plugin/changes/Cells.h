// What a cell of a spreadsheet says, however the spreadsheet has rewritten it. Nothing is guessed: what has two
// meanings has none.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace planfold {

// "1,00,000.50", "100000.5" and "1E+05" as "100000.5": without grouping, exponent and zeros that say nothing.
// `decimalComma`: the file's program may have written 1.00.000,5. None for what is no number, or may be two.
std::optional<std::string> PlainNumber(std::string_view cell, bool decimalComma);

// A new amount in rupees for the order's rules, "100000.50"; a new count of shares or periods. A rounded
// "1E+05" is none. None: `cell` is to be told as it stands there.
std::optional<std::string> ReadRupees(std::string_view cell, bool decimalComma);
std::optional<std::string> ReadCount(std::string_view cell, bool decimalComma);

// Without the quote that disarms a formula, and without blanks around it.
std::string_view Restored(std::string_view cell);
// "2027-03-05", with the time behind it where there is one; none when the cell is no date.
std::optional<std::string> DateInFigures(std::string_view cell);

// Whether a file's cell says what the book's does: the same text, number or moment. Texts of figures that begin
// with 0 are no numbers. Of a date whose month and day may be either, one reading is enough.
bool MeansTheSame(std::string_view cell, std::string_view ofBook, bool decimalComma);

} // namespace planfold

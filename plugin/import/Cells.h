// What stands in a cell, brought into the words of a basket line, or why it is not taken. Nothing is guessed:
// what can be read in two ways is refused until the mapping says which.
#pragma once

#include "plugin/import/Mapping.h"

#include <string>
#include <string_view>

namespace planfold {

enum class ImportFault : std::uint8_t {
    none,
    missing,
    noNumber,
    grouping,
    partOfPaisa,
    undecidedUnit,
    shortened,
    zerosLost,
    noDate,
    undecidedDate,
    undecidedSerial,
    unknownWord,
    badText,
    twoValues,
    unknownScrip,
    otherScrip,
    unreadableRow,
    rule,
    count
};
// What the fault is, to be put behind the column's name.
const char* TextOf(ImportFault fault);

// Without blanks around it, and without what a spreadsheet or an export put in front so that it is no formula.
std::string_view PlainText(std::string_view text);

// Money in paise: "1,00,000.50" and "Rs 100000.5" are "10000050" in rupees.
ImportFault ReadMoney(const TableCell& cell, AmountUnit unit, std::string& paise);
ImportFault ReadWholeNumber(const TableCell& cell, std::string& number);
// A date as the form writes it: "05/Mar/2027".
ImportFault ReadDay(const TableCell& cell, DatePattern pattern, std::string& date);
// Whether a basket line has words of its own for it.
bool HasWords(BasketField field);
// The one that is meant. An exchange without one may be the host's own word.
ImportFault ReadWord(BasketField field, std::string_view text, std::string& word);
// A code or a name.
ImportFault ReadCode(const TableCell& cell, std::string& code);

} // namespace planfold

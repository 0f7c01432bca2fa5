// The rows of a text in which a spreadsheet divides cells by commas, semicolons or tabs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

struct CsvRow {
    int line = 0; // of the text, from 1; where the row begins
    std::vector<std::string> cells;

    bool IsBlank() const;
};

class CsvText {
public:
    // The first line tells what divides the cells. The text outlives this.
    explicit CsvText(std::string_view text);

    char Separator() const { return m_separator; }
    // False at the end.
    bool Next(CsvRow& row);
    // A row had a quote that is not closed, or text behind one: it may have taken other rows in.
    bool IsTorn() const { return m_torn; }

private:
    std::string TakeCell();
    void TakeQuoted(std::string& cell);

    std::string_view m_rest;
    char m_separator = ',';
    int m_line = 1;
    bool m_torn = false;
};

} // namespace planfold

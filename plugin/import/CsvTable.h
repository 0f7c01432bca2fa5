// Text with a row a line and a delimiter between cells; a quoted cell may hold delimiters, line ends and
// doubled quotes.
#pragma once

#include "plugin/import/Table.h"

#include <optional>

namespace planfold {

class CsvTable final : public TableReader {
public:
    // `bytes` outlives this. A first line "sep=;" says the delimiter.
    explicit CsvTable(std::string_view bytes);
    // Of text that is UTF-8 already.
    CsvTable(std::string_view text, char delimiter);

    std::string_view Text() const { return m_text; }
    // Nothing where the file itself says which.
    void SetDelimiter(char delimiter);

    bool Next(TableRow& row) override;
    const std::string& Fault() const override { return m_fault; }
    std::size_t Done() const override { return m_at; }
    std::size_t Total() const override { return m_text.size(); }

private:
    void ReadSaidDelimiter();
    std::optional<const char*> ReadCells(TableRow& row);
    bool ReadQuoted(TableRow& row, std::size_t limit);
    void LeaveLineOf(std::size_t start);

    std::string m_decoded;
    std::string_view m_text;
    std::size_t m_at = 0;
    int m_line = 1;
    char m_delimiter = ',';
    bool m_isSaid = false;
    std::string m_undoubled; // of the row; never grows beyond its room, as cells view it
    std::string m_fault;
};

} // namespace planfold

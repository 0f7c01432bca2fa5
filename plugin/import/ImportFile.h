// A file that is to be imported: its headings, how its columns are read, and what becomes of its first rows.
#pragma once

#include "plugin/import/ImportReader.h"
#include "plugin/import/Mapping.h"

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace planfold {

// A row as it will be read.
struct PreviewRow {
    int line = 0;
    ByField<BasketField, std::string> texts;
    std::string reason; // why it is rejected; empty when it is not
};

// What stands in a cell that may be two dates: both.
struct TwoDates {
    std::string said, dayFirst, monthFirst;
};

class ImportFile {
public:
    static constexpr std::size_t kRowsShown = 50;
    static constexpr int kRowsTried = 2000;

    // Why the file cannot be imported; empty when it can. A kept mapping for its headings is taken.
    std::string Open(std::string bytes, const KeptMappings& kept);

    const Headings& Columns() const { return m_headings; }
    // What stands first in each column.
    const std::vector<std::string>& FirstValues() const { return m_firstValues; }
    bool IsKept() const { return m_isKept; }
    ImportMapping& Mapping() { return m_mapping; }
    const ImportMapping& Mapping() const { return m_mapping; }
    // No other column is read as the same field.
    void ReadColumnAs(std::size_t column, BasketField field);
    // The headings of the columns that are not read.
    std::vector<std::string> NotRead() const;

    // Reads the first rows as the mapping is now. `scrips` lives until the last row is tried, or others are.
    void Try(const BasketRules& rules, ScripSource& scrips);
    // Some rows more, for the counts; false at the end of the file.
    bool TryMore(int rows);
    std::span<const PreviewRow> Rows() const;
    std::size_t RowsTried() const;
    std::size_t Good() const;
    // Whether there are more rows than were tried.
    bool HasMore() const;
    std::size_t Count(ImportFault fault) const;
    // "3 cells may be two dates", the most frequent first.
    std::vector<std::string> FaultTexts() const;
    // Of the first cell that is in doubt; its text is empty without one.
    const TwoDates& Doubt() const { return m_doubt; }

    // Reads the whole file as the mapping is now. Never null after Open went well.
    std::unique_ptr<ImportReader> Read(const BasketRules& rules, ScripSource& scrips, BasketSink& sink) const;
    // The same by itself, for whoever reads later. It holds the file.
    BeginReading Begin() const;

private:
    class FirstRows;
    struct Trial;

    void LookAtColumns(TableReader& table);
    void FindDoubt();

    std::shared_ptr<const std::string> m_bytes;
    Headings m_headings;
    std::vector<std::string> m_firstValues;
    ImportMapping m_mapping;
    bool m_isKept = false;
    std::shared_ptr<Trial> m_trial; // none before Try
    TwoDates m_doubt;
};

} // namespace planfold

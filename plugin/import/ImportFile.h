// A file that is to be imported: its headings, how its columns are read, and what becomes of its first rows.
#pragma once

#include "plugin/import/ImportReader.h"
#include "plugin/import/Mapping.h"

#include <array>
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

    // Reads the first rows as the mapping is now.
    void Try(const BasketRules& rules, ScripSource& scrips);
    std::span<const PreviewRow> Rows() const { return m_rows; }
    std::size_t RowsTried() const { return m_tried; }
    std::size_t Good() const { return m_good; }
    // Whether there are more rows than were tried.
    bool HasMore() const { return m_hasMore; }
    std::size_t Count(ImportFault fault) const { return m_counts[static_cast<std::size_t>(fault)]; }
    // "3 cells may be two dates", the most frequent first.
    std::vector<std::string> FaultTexts() const;
    // Of the first cell that is in doubt; its text is empty without one.
    const TwoDates& Doubt() const { return m_doubt; }

    // Reads the whole file as the mapping is now. Never null after Open went well.
    std::unique_ptr<ImportReader> Read(const BasketRules& rules, ScripSource& scrips, BasketSink& sink) const;
    // The same by itself, for whoever reads later. It holds the file.
    BeginReading Begin() const;

private:
    void LookAtColumns(TableReader& table);

    std::shared_ptr<const std::string> m_bytes;
    Headings m_headings;
    std::vector<std::string> m_firstValues;
    ImportMapping m_mapping;
    bool m_isKept = false;
    std::vector<PreviewRow> m_rows;
    std::size_t m_tried = 0, m_good = 0;
    bool m_hasMore = false;
    std::array<std::size_t, static_cast<std::size_t>(ImportFault::count)> m_counts{};
    TwoDates m_doubt;
};

} // namespace planfold

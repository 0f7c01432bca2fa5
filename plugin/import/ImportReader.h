// Reads a table through a mapping: each row becomes the texts of a basket line, which the basket's own rules
// judge, or is rejected with its line, its column and the reason.
#pragma once

#include "plugin/basket/BasketReading.h"
#include "plugin/import/Cells.h"
#include "plugin/import/Table.h"

#include <memory>
#include <optional>
#include <unordered_map>

namespace planfold {

// Of the row rejected last.
struct ImportFinding {
    ImportFault fault = ImportFault::none;
    int column = 0;               // from 1; 0 when no column of the file is meant
    BasketField field = kNotRead; // kNotRead when none is
};

class ImportReader final : public BasketReading {
public:
    // `headings` are the table's; rows up to them are skipped. The rules and the others outlive this.
    ImportReader(std::unique_ptr<TableReader> table, const Headings& headings, ImportMapping mapping,
                 const BasketRules& rules, ScripSource& scrips, BasketSink& sink);

    bool Read(std::size_t lines) override;

    int LinesRead() const override { return m_row.line; }
    std::size_t RowsLoaded() const override { return m_rows; }
    const std::string& LastReason() const override { return m_lastReason; }
    std::size_t Done() const override { return m_table->Done(); }
    std::size_t Total() const override { return m_table->Total(); }

    const ImportFinding& Finding() const { return m_finding; }
    // The texts of the row that was read last, as far as they could be.
    const BasketTexts& Texts() const { return m_texts; }

private:
    struct Word {
        std::string said, word;
        CellKind kind = CellKind::text;
        bool isRead = false;
    };

    void ReadRow();
    bool ReadFields();
    bool ReadField(const ImportField& row);
    ImportFault ReadDate(const TableCell& cell, std::string& text);
    ImportFault ReadCell(BasketField field, const TableCell& cell, std::string& text);
    bool ChooseValue();
    bool FindScrip();
    const ScripNames& LookUp(std::string_view exchange, std::string_view series, std::string_view symbol);
    // Always false.
    bool Refuse(ImportFault fault, BasketField field);
    void Reject(std::string reason);
    std::string ReasonOf(const ImportFinding& finding) const;
    std::string BasketLineOfRow() const;
    TableCell CellOf(BasketField field) const;

    std::unique_ptr<TableReader> m_table;
    Headings m_headings;
    ImportMapping m_mapping;
    ByField<BasketField, int> m_columns; // from 1; 0: none
    BasketCheck m_check;
    ScripSource& m_scrips;
    BasketSink& m_sink;
    TableRow m_row;
    ByField<BasketField, Word> m_last;                   // what the texts view; most rows say the same again
    std::unordered_map<std::string, std::string> m_days; // as said
    BasketTexts m_texts;
    std::unordered_map<std::string, ScripNames> m_known;
    std::string m_key;
    ImportFinding m_finding;
    std::size_t m_rows = 0;
    std::string m_lastReason;
    bool m_toldFault = false;
};

} // namespace planfold

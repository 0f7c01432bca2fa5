// The first visible sheet of a workbook (.xlsx).
#pragma once

#include "plugin/import/Table.h"
#include "plugin/import/XmlCutter.h"
#include "plugin/import/ZipFile.h"

#include <optional>
#include <string>
#include <vector>

namespace planfold {

// What a cell's style says about its number.
struct CellStyle {
    bool isDate = false;
    std::uint8_t digits = 0; // shown with leading zeros up to so many; 0 without
};

// A number of a workbook with all digits that it means: "100000" for 1E5, "1500.1" for 1500.0999999999999. As
// it stands when it is none, or has more digits than a workbook keeps.
std::string PlainNumber(std::string_view text, int digits);

// The day of a workbook's serial number as yyyy-mm-dd; empty when it is none.
std::string DayOfSerial(std::string_view text, bool since1904);

class XlsxTable final : public TableReader {
public:
    explicit XlsxTable(std::string_view bytes);
    ~XlsxTable() override;

    bool Next(TableRow& row) override;
    const std::string& Fault() const override { return m_fault; }
    std::size_t Done() const override;
    std::size_t Total() const override { return m_total; }

private:
    struct Xml;

    void Open();
    std::string FindSheet(const std::string& workbook);
    void ReadStyles(const std::string& part);
    void ReadShared(const std::string& part);
    bool ReadWhole(const std::string& part, const char* root, std::string& text);
    bool Parse(std::string& text);
    bool Refuse(std::string_view why);
    void ReadCells(TableRow& row);

    ZipFile m_zip;
    std::unique_ptr<Xml> m_xml;
    std::vector<CellStyle> m_styles;
    std::vector<std::string> m_shared;
    bool m_since1904 = false;
    std::unique_ptr<ZipPart> m_part; // of the sheet
    std::unique_ptr<XmlCutter> m_rows;
    std::size_t m_total = 0;
    int m_line = 0;
    std::string m_row; // its XML, which the cells view
    std::vector<std::string> m_made;
    std::string m_fault;
};

} // namespace planfold

#include "plugin/import/Table.h"

#include "plugin/base/Text.h"
#include "plugin/import/CsvTable.h"
#include "plugin/import/Headings.h"
#include "plugin/import/XlsxTable.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::string_view kZip = "PK\x03\x04";
constexpr std::string_view kOldWorkbook = "\xD0\xCF\x11\xE0";
constexpr char kDelimiters[] = {',', ';', '\t'};

// The delimiter under which the most headings are known; text above them says nothing about it.
char FindDelimiter(std::string_view text) {
    char best = kDelimiters[0];
    std::size_t most = 0;
    for (const char delimiter : kDelimiters) {
        CsvTable table(text, delimiter);
        const std::size_t known = FindHeadings(table).known;
        if (known <= most) continue;
        best = delimiter;
        most = known;
    }
    return best;
}

} // namespace

bool TableRow::IsBlank() const {
    const auto isBlank = [](const TableCell& cell) {
        return cell.text.find_first_not_of(' ') == cell.text.npos;
    };
    return !fault && std::ranges::all_of(cells, isBlank);
}

OpenedTable OpenTable(std::string_view bytes) {
    if (bytes.starts_with(kOldWorkbook))
        return std::string(
            "it is a workbook of the old format or has a password; save it as .xlsx without one");
    if (bytes.starts_with(kZip)) {
        if (bytes.size() > kLargestWorkbook) return Format("it is larger than %zu MB", kLargestWorkbook >> 20);
        auto workbook = std::make_unique<XlsxTable>(bytes);
        if (!workbook->Fault().empty()) return workbook->Fault();
        return workbook;
    }
    if (bytes.size() > kLargestTextFile) return Format("it is larger than %zu MB", kLargestTextFile >> 20);
    auto text = std::make_unique<CsvTable>(bytes);
    text->SetDelimiter(FindDelimiter(text->Text()));
    return text;
}

} // namespace planfold

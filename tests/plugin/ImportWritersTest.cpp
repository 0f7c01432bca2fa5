// Import: a table is the same orders by whichever writer, of text or of a workbook.
#include "plugin/import/CsvTable.h"
#include "plugin/import/Encoding.h"
#include "plugin/import/XlsxTable.h"
#include "tests/plugin/ImportDouble.h"

#include <zlib.h>

#include <random>

namespace planfold {
namespace {

// Writes cells as programs do: any delimiter, quotes where they must or may be, any line end and encoding.
TEST(Import, AnyTableComesBackFromAnyWriter) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
    const std::string letters = "aZ09 ;,\t\"\n'=\xC3\xA9";
    for (int round = 0; round < 300; ++round) {
        const char delimiter = ",;\t"[below(3)];
        std::vector<std::vector<std::string>> table{{"Client", "Amount", "Note", "Qty"}};
        for (std::size_t row = 0; row < 1 + below(4); ++row) {
            auto& cells = table.emplace_back(4);
            for (std::string& cell : cells)
                for (std::size_t length = below(6); length > 0; --length) {
                    const std::size_t at = below(14);
                    cell += at < 12 ? letters.substr(at, 1) : letters.substr(12);
                }
            cells[0] = "C" + std::to_string(row); // no row is blank
        }
        std::string text;
        for (const auto& cells : table) {
            for (std::size_t i = 0; i < cells.size(); ++i) {
                const bool must = cells[i].find_first_of("\"\n\t;,") != std::string::npos;
                const bool isQuoted = must || below(3) == 0;
                if (i > 0) text += delimiter;
                if (isQuoted) text += '"';
                for (const char c : cells[i])
                    text.append(isQuoted && c == '"' ? 2 : 1, c);
                if (isQuoted) text += '"';
            }
            text += round % 2 ? "\r\n" : "\n";
        }
        auto opened = OpenTable(text);
        auto& reader = *std::get<std::unique_ptr<TableReader>>(opened);
        TableRow row;
        for (const auto& cells : table) {
            ASSERT_TRUE(reader.Next(row)) << text;
            ASSERT_EQ(row.fault, nullptr) << text;
            ASSERT_EQ(row.cells.size(), cells.size()) << text;
            for (std::size_t i = 0; i < cells.size(); ++i)
                EXPECT_EQ(row.cells[i].text, cells[i]) << text;
        }
        EXPECT_FALSE(reader.Next(row));
    }
}

// A workbook of one sheet, whose parts are not packed. A cell "#5" is the number 5, in red, "%5" a day by its
// number, "@2027-03-05" one in words.
std::string AsWorkbook(const std::vector<std::vector<std::string>>& table) {
    std::string sheet = "<worksheet><sheetData>";
    for (std::size_t row = 0; row < table.size(); ++row) {
        sheet += "<row r=\"" + std::to_string(row + 1) + "\">";
        for (const std::string& cell : table[row]) {
            constexpr std::pair<char, const char*> kinds[] = {
                {'#', "s=\"0\""}, {'%', "s=\"1\""}, {'@', "t=\"d\""}};
            const auto* kind =
                std::ranges::find(kinds, cell.empty() ? ' ' : cell[0], &std::pair<char, const char*>::first);
            if (kind != std::end(kinds)) {
                sheet += std::string("<c ") + kind->second + "><v>" + cell.substr(1) + "</v></c>";
                continue;
            }
            sheet += "<c t=\"inlineStr\"><is><t xml:space=\"preserve\">";
            for (const char c : cell)
                sheet += c == '&' ? "&amp;" : c == '<' ? "&lt;" : std::string(1, c);
            sheet += "</t></is></c>";
        }
        sheet += "</row>";
    }
    const std::pair<std::string, std::string> parts[] = {
        {"_rels/.rels", "<Relationships><Relationship Id=\"r0\" Type=\"x/officeDocument\" "
                        "Target=\"xl/workbook.xml\"/></Relationships>"},
        {"xl/workbook.xml", "<workbook><sheets><sheet name=\"A\" r:id=\"r1\"/></sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels",
         "<Relationships><Relationship Id=\"r1\" Target=\"worksheets/sheet1.xml\"/>"
         "<Relationship Id=\"r2\" Type=\"x/styles\" Target=\"styles.xml\"/></Relationships>"},
        {"xl/styles.xml", "<styleSheet><numFmts><numFmt numFmtId=\"170\" formatCode=\"[Red]0.00\"/></numFmts>"
                          "<cellXfs><xf numFmtId=\"170\"/><xf numFmtId=\"27\"/></cellXfs></styleSheet>"},
        {"xl/worksheets/sheet1.xml", sheet + "</sheetData></worksheet>"}};
    const auto put = [](std::string& bytes, std::size_t number, int size) {
        for (; size > 0; --size, number >>= 8)
            bytes.push_back(static_cast<char>(number & 0xFF));
    };
    std::string bytes, directory;
    for (const auto& [name, content] : parts) {
        std::string fields;
        const auto* at = reinterpret_cast<const Bytef*>(content.data());
        for (const auto& [number, size] : {std::pair<std::size_t, int>{0, 6},
                                           {crc32(0, at, static_cast<uInt>(content.size())), 4},
                                           {content.size(), 4},
                                           {content.size(), 4},
                                           {name.size(), 2},
                                           {0, 2}})
            put(fields, number, size);
        directory.append("PK\x01\x02\x14\0\x14\0\0\0", 10).append(fields).append(10, '\0');
        put(directory, bytes.size(), 4);
        directory += name;
        bytes.append("PK\x03\x04\x14\0\0\0", 8).append(fields).append(name).append(content);
    }
    const std::size_t place = bytes.size();
    bytes.append(directory).append("PK\x05\x06\0\0\0\0\5\0\5\0", 12);
    put(bytes, directory.size(), 4);
    put(bytes, place, 4);
    return bytes.append(2, '\0');
}

std::string AsText(const std::vector<std::vector<std::string>>& table, char delimiter) {
    std::string text;
    for (const auto& cells : table)
        for (std::size_t i = 0; i < cells.size(); ++i) {
            text += '"';
            for (const char c : cells[i])
                text.append(c == '"' ? 2 : 1, c);
            text.append(1, '"').append(1, i + 1 < cells.size() ? delimiter : '\n');
        }
    return text;
}

// Of letters up to U+00FF.
std::string AsUtf16(const std::string& utf8) {
    std::string text = "\xFF\xFE";
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const bool isTwo = (utf8[i] & 0xE0) == 0xC0;
        text += static_cast<char>(isTwo ? (utf8[i] & 3) << 6 | (utf8[i + 1] & 0x3F) : utf8[i]);
        text += '\0';
        i += isTwo;
    }
    return text;
}

// Whoever wrote it: the same orders, and the same lines refused in the same columns for the same reasons.
TEST(Import, ATableIsTheSameOrdersByWhicheverWriter) {
    std::mt19937 random(11);
    const auto one = [&](std::initializer_list<const char*> of) {
        return *(of.begin() + random() % of.size());
    };
    std::size_t orders = 0, refused = 0;
    for (int round = 0; round < 30; ++round) {
        std::vector<std::vector<std::string>> table{{"UCC", "Exch", "Series", "Symbol", "Amount (Rs)", "Freq",
                                                     "Start Date", "Periods", "Action", "Br\xC3\xA4nch"}};
        for (std::size_t row = 0; row < 6; ++row) {
            const bool isBad = random() % 4 == 0;
            table.push_back({one({"C1", "007", "=C,2", "J\xC3\xBCrg \"A\""}), one({"NSE", "nse_cm"}), "EQ",
                             isBad ? "NONE" : one({"ALPHA", "beta", " GAMMA "}),
                             one({"1500", "1,50,000.50", "Rs 10", "1.5.0", "<1&2>"}),
                             one({"monthly", "W", "yearly"}),
                             one({"05/Mar/2027", "2027-03-05", "31/12/2027", "03/05/2027"}),
                             one({"12", "24", "x"}), one({"SIP", "Sell"}), "\xC3\xA9;\t"});
        }
        const std::string text = AsText(table, ',');
        std::string latin = AsUtf16(text).substr(2);
        for (std::size_t i = 0; i < latin.size(); ++i)
            latin.erase(i + 1, 1);
        std::vector<int> columns;
        const auto told = [&](const std::string& bytes) {
            ImportFile file;
            if (const std::string fault = file.Open(bytes, {}); !fault.empty()) return fault;
            file.Mapping().pattern = DatePattern::dayFirst;
            columns.clear();
            return Imported(file, &columns);
        };
        const std::string first = told(text);
        EXPECT_EQ(std::ranges::count(columns, 0), 0) << first;
        orders += 6 - columns.size();
        refused += columns.size();
        for (const std::string& other : {AsText(table, ';'), AsText(table, '\t'), "\xEF\xBB\xBF" + text,
                                         AsUtf16(text), latin, AsWorkbook(table)})
            ASSERT_EQ(told(other), first) << other;
    }
    EXPECT_GT(std::min(orders, refused), 20u);
}

// Longer than what is read of it at once; and what a cell says is one thing as a number, another as text.
TEST(Import, AWorkbookIsReadPieceByPieceCellByCell) {
    std::vector<std::vector<std::string>> table{
        {"UCC", "Exch", "Series", "Symbol", "Amount (Rs)", "Freq", "Start Date", "Periods", "Action"}};
    constexpr const char* dates[] = {"05/Mar/2027", "%46451", "@2027-03-05T00:00:00"};
    std::string expected;
    for (int row = 2; row < 700; ++row) {
        const std::string client = "C" + std::to_string(row);
        table.push_back({client, "NSE", "EQ", "ALPHA", row % 2 ? "1.500" : "#1.500", "monthly", dates[row % 3],
                         "12", "SIP"});
        expected += std::to_string(row);
        expected += row % 2 ? "! amount (column 5): \"1.500\" may be meant in two ways, or is grouped wrongly|"
                            : ":" + client + " ALPHA-EQ value 150 monthly 05/Mar/2027 12 B|";
    }
    EXPECT_EQ(Imported(AsWorkbook(table)), expected);
    std::string crowded = AsWorkbook({{"UCC"}});
    crowded.replace(crowded.size() - 12, 2, "\xFF\xFF"); // the count of its parts
    EXPECT_EQ(Imported(crowded), "fault: the workbook has too many parts");
}

} // namespace
} // namespace planfold

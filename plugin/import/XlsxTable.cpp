#include "plugin/import/XlsxTable.h"

#include "base/Text.h"
#include "plugin/base/Text.h"

#include <rapidxml/rapidxml.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>

namespace planfold {

namespace {

using Node = rapidxml::xml_node<>;

constexpr char kNoSheet[] = "the workbook has no sheet that is shown";
constexpr std::string_view kMain = "_rels/.rels";

std::string_view LocalName(const Node& node) {
    const std::string_view name(node.name(), node.name_size());
    return name.substr(name.find(':') + 1);
}

std::string_view ValueOf(const Node& node, const char* attribute) {
    for (auto* each = node.first_attribute(); each; each = each->next_attribute()) {
        const std::string_view name(each->name(), each->name_size());
        if (name.substr(name.find(':') + 1) == attribute) return {each->value(), each->value_size()};
    }
    return {};
}

const Node* Child(const Node* node, std::string_view name) {
    for (const Node* each = node ? node->first_node() : nullptr; each; each = each->next_sibling())
        if (LocalName(*each) == name) return each;
    return nullptr;
}

template <class Act>
void ForEach(const Node* node, std::string_view name, Act act) {
    for (const Node* each = node ? node->first_node() : nullptr; each; each = each->next_sibling())
        if (LocalName(*each) == name) act(*each);
}

std::string_view TextOf(const Node* node) {
    return node ? std::string_view(node->value(), node->value_size()) : std::string_view();
}

// A text may stand in pieces, each with a look of its own; how it is pronounced is not of it.
std::string TextOfPieces(const Node& item) {
    std::string text(TextOf(Child(&item, "t")));
    ForEach(&item, "r", [&](const Node& run) { text += TextOf(Child(&run, "t")); });
    return text;
}

bool IsTrue(std::string_view text) {
    return text == "1" || text == "true";
}

// "/xl/a.xml" and, in "xl/workbook.xml", "a.xml" and "../xl/a.xml".
std::string PathFrom(std::string_view part, std::string_view target) {
    if (target.starts_with('/')) return std::string(target.substr(1));
    std::string folder(part.substr(0, part.rfind('/') + 1));
    while (target.starts_with("../")) {
        target.remove_prefix(3);
        if (!folder.empty()) folder.pop_back();
        folder.resize(folder.rfind('/') + 1);
    }
    return folder.append(target);
}

// Which of the formats that have a number alone show dates.
bool ShowsDate(int format) {
    return (format >= 14 && format <= 22) || (format >= 27 && format <= 36) || (format >= 45 && format <= 47)
           || (format >= 50 && format <= 58);
}

// What is quoted, escaped or in brackets says nothing about what is shown.
CellStyle StyleOf(std::string_view format) {
    CellStyle style;
    if (!format.empty() && format.size() < 20 && format.find_first_not_of('0') == format.npos)
        style.digits = static_cast<std::uint8_t>(format.size());
    for (std::size_t at = 0; at < format.size() && format[at] != ';'; ++at) {
        const char c = format[at];
        if (c == '\\' || c == '_' || c == '*')
            ++at;
        else if (c == '"')
            at = std::min(format.find('"', at + 1), format.size());
        else if (c == '[')
            at = std::min(format.find(']', at), format.size());
        else
            style.isDate = style.isDate || std::string_view("ymdYMD").find(c) != std::string_view::npos;
    }
    return style;
}

// "C5" is 2; nothing for what is no cell.
std::optional<std::size_t> ColumnOf(std::string_view cell) {
    std::size_t column = 0;
    std::size_t at = 0;
    for (; at < cell.size() && cell[at] >= 'A' && cell[at] <= 'Z' && at < 3; ++at)
        column = column * 26 + static_cast<std::size_t>(cell[at] - 'A') + 1;
    if (at == 0) return std::nullopt;
    return column - 1;
}

std::optional<double> ReadReal(std::string_view text) {
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
    return number;
}

} // namespace

std::string PlainNumber(std::string_view text, int digits) {
    const auto number = ReadReal(text);
    if (!number || std::abs(*number) >= 1e15) return std::string(text);
    if (*number == std::trunc(*number)) {
        std::string whole = Format("%lld", static_cast<long long>(*number));
        if (*number >= 0)
            whole.insert(
                0, static_cast<std::size_t>(digits) - std::min(whole.size(), static_cast<std::size_t>(digits)),
                '0');
        return whole;
    }
    // Fifteen digits are what a spreadsheet shows; in the plain form however small it is.
    std::array<char, 64> room;
    const auto [end, error] =
        std::to_chars(room.data(), room.data() + room.size(), *number, std::chars_format::scientific, 14);
    double shown = 0.0;
    std::from_chars(room.data(), end, shown);
    const auto plain = std::to_chars(room.data(), room.data() + room.size(), shown, std::chars_format::fixed);
    return plain.ec == std::errc() ? std::string(room.data(), plain.ptr) : std::string(text);
}

std::string DayOfSerial(std::string_view text, bool since1904) {
    const auto serial = ReadReal(text);
    if (!serial || !(*serial >= 1.0) || *serial >= 2'958'466.0) return {};
    const int number = static_cast<int>(*serial);
    // The calendar since 1900 has a 29 February 1900, number 60.
    if (!since1904 && number == 60) return {};
    using namespace std::chrono;
    const sys_days start =
        since1904 ? sys_days(year(1904) / 1 / 1) : sys_days(year(1899) / 12 / (number < 60 ? 31 : 30));
    const year_month_day day(start + days(number));
    return Format("%04d-%02u-%02u", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()));
}

struct XlsxTable::Xml {
    rapidxml::xml_document<> document;
};

XlsxTable::XlsxTable(std::string_view bytes)
    : m_zip(bytes), m_xml(std::make_unique<Xml>()), m_fault(m_zip.Fault()) {
    if (m_fault.empty()) Open();
}

XlsxTable::~XlsxTable() = default;

bool XlsxTable::Refuse(std::string_view why) {
    if (m_fault.empty()) m_fault = why;
    return false;
}

bool XlsxTable::Parse(std::string& text) {
    m_xml->document.clear();
    try {
        m_xml->document.parse<rapidxml::parse_no_data_nodes>(text.data());
    } catch (const rapidxml::parse_error&) {
        return Refuse(XmlCutter::kBroken);
    }
    return m_xml->document.first_node() || Refuse(XmlCutter::kBroken);
}

// A part of few elements, whose root has this name.
bool XlsxTable::ReadWhole(const std::string& part, const char* root, std::string& text) {
    const ZipFile::Entry* entry = m_zip.Find(part);
    if (!entry) return Refuse("the workbook has no part " + part);
    ZipPart unpacked(*entry);
    XmlCutter cutter(unpacked, root);
    if (!cutter.Next(text)) return Refuse(cutter.Fault().empty() ? XmlCutter::kBroken : cutter.Fault());
    return Parse(text);
}

void XlsxTable::Open() {
    std::string text, workbook;
    if (!ReadWhole(std::string(kMain), "Relationships", text)) return;
    ForEach(m_xml->document.first_node(), "Relationship", [&](const Node& node) {
        if (ValueOf(node, "Type").ends_with("/officeDocument"))
            workbook = PathFrom("", ValueOf(node, "Target"));
    });
    const std::string sheet = FindSheet(workbook);
    if (!m_fault.empty()) return;
    const ZipFile::Entry* entry = m_zip.Find(sheet);
    if (!entry) return static_cast<void>(Refuse(kNoSheet));
    m_total = entry->size;
    m_part = std::make_unique<ZipPart>(*entry);
    m_rows = std::make_unique<XmlCutter>(*m_part, "row");
}

std::string XlsxTable::FindSheet(const std::string& workbook) {
    std::string text, identifier, sheet, styles, shared;
    if (!ReadWhole(workbook, "workbook", text)) return {};
    const Node* root = m_xml->document.first_node();
    if (const Node* properties = Child(root, "workbookPr"))
        m_since1904 = IsTrue(ValueOf(*properties, "date1904"));
    ForEach(Child(root, "sheets"), "sheet", [&](const Node& node) {
        const std::string_view state = ValueOf(node, "state");
        const bool isShown = state.empty() || state == "visible";
        // Its other identifier is "sheetId".
        if (isShown && identifier.empty()) identifier = ValueOf(node, "id");
    });
    const std::size_t name = workbook.rfind('/') + 1;
    const std::string links = workbook.substr(0, name) + "_rels/" + workbook.substr(name) + ".rels";
    if (!ReadWhole(links, "Relationships", text)) return {};
    ForEach(m_xml->document.first_node(), "Relationship", [&](const Node& node) {
        const std::string_view type = ValueOf(node, "Type");
        const std::string target = PathFrom(workbook, ValueOf(node, "Target"));
        if (!identifier.empty() && ValueOf(node, "Id") == identifier) sheet = target;
        if (type.ends_with("/styles")) styles = target;
        if (type.ends_with("/sharedStrings")) shared = target;
    });
    if (m_zip.Find(styles)) ReadStyles(styles);
    if (m_zip.Find(shared)) ReadShared(shared);
    return sheet;
}

void XlsxTable::ReadStyles(const std::string& part) {
    std::string text;
    if (!ReadWhole(part, "styleSheet", text)) return;
    const Node* root = m_xml->document.first_node();
    std::unordered_map<int, CellStyle> own;
    ForEach(Child(root, "numFmts"), "numFmt", [&](const Node& node) {
        const auto number = base::ReadNumber<int>(ValueOf(node, "numFmtId"));
        if (number) own[*number] = StyleOf(ValueOf(node, "formatCode"));
    });
    ForEach(Child(root, "cellXfs"), "xf", [&](const Node& node) {
        const int format = base::ReadNumber<int>(ValueOf(node, "numFmtId")).value_or(0);
        const auto found = own.find(format);
        m_styles.push_back(found != own.end() ? found->second : CellStyle{ShowsDate(format)});
    });
}

void XlsxTable::ReadShared(const std::string& part) {
    ZipPart unpacked(*m_zip.Find(part));
    XmlCutter items(unpacked, "si");
    std::string text;
    std::size_t size = 0;
    while (items.Next(text)) {
        if (!Parse(text)) return;
        m_shared.push_back(TextOfPieces(*m_xml->document.first_node()));
        size += m_shared.back().size() + sizeof(std::string);
        if (size > kLargestShared) return static_cast<void>(Refuse("the workbook has too many texts"));
    }
    if (!items.Fault().empty()) Refuse(items.Fault());
}

std::size_t XlsxTable::Done() const {
    return m_part ? std::min(m_part->Done(), m_total) : 0;
}

bool XlsxTable::Next(TableRow& row) {
    row.cells.clear();
    row.fault = nullptr;
    if (!m_fault.empty()) return false;
    if (!m_rows->Next(m_row)) {
        m_fault = m_rows->Fault();
        return false;
    }
    if (!Parse(m_row)) return false;
    const Node& node = *m_xml->document.first_node();
    const std::string_view number = ValueOf(node, "r");
    const int line = number.empty() ? m_line + 1 : base::ReadNumber<int>(number).value_or(0);
    if (line <= m_line) return Refuse("the rows of the workbook's sheet are out of order");
    if (line > kMostTableRows) return Refuse(Format("it has more than %d rows", kMostTableRows));
    row.line = m_line = line;
    ReadCells(row);
    return true;
}

void XlsxTable::ReadCells(TableRow& row) {
    const Node& node = *m_xml->document.first_node();
    m_made.clear();
    m_made.reserve(kMostTableColumns);
    std::size_t next = 0;
    const auto made = [&](std::string text) -> std::string_view {
        return m_made.emplace_back(std::move(text));
    };
    ForEach(&node, "c", [&](const Node& cell) {
        const std::size_t column = ColumnOf(ValueOf(cell, "r")).value_or(next);
        next = column + 1;
        std::string_view text = TextOf(Child(&cell, "v"));
        const std::string_view type = ValueOf(cell, "t");
        // Looks reach far beyond what is filled in.
        if (row.fault || (text.empty() && type != "inlineStr")) return;
        if (column >= kMostTableColumns || column < row.cells.size())
            return static_cast<void>(row.fault = column >= kMostTableColumns
                                                     ? "the row has more than 256 columns"
                                                     : "the cells of the row are out of order");
        row.cells.resize(column + 1);
        CellKind kind = CellKind::text;
        if (type == "inlineStr") {
            if (const Node* item = Child(&cell, "is")) text = made(TextOfPieces(*item));
        } else if (type == "s") {
            const auto place = base::ReadNumber<std::size_t>(text);
            if (!place || *place >= m_shared.size())
                return static_cast<void>(row.fault = "a cell of the row names a text that is not there");
            text = m_shared[*place];
        } else if (type == "d") {
            kind = CellKind::date;
            text = text.substr(0, 10);
        } else if (type.empty() || type == "n") {
            const auto style = base::ReadNumber<std::size_t>(ValueOf(cell, "s")).value_or(m_styles.size());
            const CellStyle look = style < m_styles.size() ? m_styles[style] : CellStyle{};
            const std::string day = look.isDate ? DayOfSerial(text, m_since1904) : std::string();
            kind = day.empty() ? CellKind::number : CellKind::date;
            text = made(day.empty() ? PlainNumber(text, look.digits) : day);
        }
        row.cells[column] = {text, kind};
    });
    if (row.fault) row.cells.clear();
}

} // namespace planfold

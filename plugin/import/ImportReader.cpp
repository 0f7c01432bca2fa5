#include "plugin/import/ImportReader.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// A file of ever new names must not fill the memory.
constexpr std::size_t kMostKnown = 100'000;
constexpr std::size_t kLongestShown = 40;
constexpr std::size_t kLongestKept = 200;

// Which column a reason of the basket's rules is about, by a word of it.
struct RuleColumn {
    std::string_view word;
    BasketField field;
};
constexpr RuleColumn kRuleColumns[] = {
    {"Token", BasketField::symbol},        {"Date", BasketField::startDateText},
    {"Period", BasketField::totalPeriod},  {"Minimum SIP", BasketField::totalPeriod},
    {"Frequency", BasketField::frequency}, {"Action", BasketField::side},
    {"Invest", BasketField::investType},   {"Order Type", BasketField::orderType},
    {"Product", BasketField::product},     {"Quantity", BasketField::quantity},
    {"Amount", BasketField::amount},
};

BasketField FieldOfRule(std::string_view reason) {
    for (const auto& [word, field] : kRuleColumns)
        if (reason.find(word) != reason.npos) return field;
    return kNotRead;
}

bool IsUpper(BasketField field) {
    return field == BasketField::series || field == BasketField::symbol || field == BasketField::tradingSymbol
           || field == BasketField::product;
}

// Beyond ASCII nothing changes.
void MakeUpper(std::string& text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
}

std::string_view WithoutZeros(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of('0'), text.size()));
}

} // namespace

ImportReader::ImportReader(std::unique_ptr<TableReader> table, const Headings& headings, ImportMapping mapping,
                           const BasketRules& rules, ScripSource& scrips, BasketSink& sink)
    : m_table(std::move(table)), m_headings(headings), m_mapping(std::move(mapping)), m_check(rules, scrips),
      m_scrips(scrips), m_sink(sink) {
    for (std::size_t i = m_mapping.columns.size(); i-- > 0;)
        if (m_mapping.columns[i] != kNotRead) m_columns[m_mapping.columns[i]] = static_cast<int>(i) + 1;
    if (rules.products.size() == 1) m_mapping.defaults.try_emplace(BasketField::product, rules.products[0]);
}

bool ImportReader::Read(std::size_t lines) {
    while (lines-- > 0) {
        if (!m_table->Next(m_row)) {
            // What was read before the file's fault has been read; that the rest is missing is told as a line.
            if (m_table->Fault().empty() || std::exchange(m_toldFault, true)) return false;
            m_row.cells.clear();
            m_finding = {ImportFault::unreadableRow};
            Reject("from here on nothing was read: " + m_table->Fault());
            return false;
        }
        if (m_row.line > m_headings.line && !m_row.IsBlank()) ReadRow();
    }
    return true;
}

void ImportReader::ReadRow() {
    m_finding = {};
    m_texts = {};
    if (m_row.fault) {
        m_finding.fault = ImportFault::unreadableRow;
        return Reject(m_row.fault);
    }
    if (!ReadFields()) return Reject(ReasonOf(m_finding));
    auto refusal = m_check.Validate(m_texts, m_row.line);
    if (!refusal) {
        ++m_rows;
        return m_sink.OnRow(m_texts);
    }
    std::string reason = refusal->reason.empty() ? refusal->notice : refusal->reason;
    const BasketField field = FieldOfRule(reason);
    m_finding = {ImportFault::rule, field == kNotRead ? 0 : m_columns[field], field};
    if (!refusal->notice.empty()) m_sink.OnNotice(refusal->notice);
    if (refusal->logReason) m_sink.OnLog(refusal->reason);
    if (m_finding.column) reason = Format("column %d: ", m_finding.column) + reason;
    Reject(std::move(reason));
}

bool ImportReader::Refuse(ImportFault fault, BasketField field) {
    // The first is what is told.
    if (m_finding.fault == ImportFault::none) m_finding = {fault, m_columns[field], field};
    return false;
}

// `Amount (column 8): "1E+05" was shortened by a spreadsheet; the digits are lost`
std::string ImportReader::ReasonOf(const ImportFinding& finding) const {
    const ImportField* field = FindImportField(finding.field);
    std::string reason = field ? field->word : "";
    if (!finding.column) return reason + ": no column says it, and no default";
    reason += Format(" (column %d): ", finding.column);
    const std::string_view said = PlainText(CellOf(finding.field).text);
    if (!said.empty()) {
        // Never a part of a character.
        std::size_t length = std::min(said.size(), kLongestShown);
        while (length > 0 && length < said.size() && (said[length] & 0xC0) == 0x80)
            --length;
        reason.append("\"").append(said.substr(0, length)).append(length < said.size() ? "...\" " : "\" ");
    }
    return reason + TextOf(finding.fault);
}

TableCell ImportReader::CellOf(BasketField field) const {
    const auto column = static_cast<std::size_t>(m_columns[field]);
    return column == 0 || column > m_row.cells.size() ? TableCell() : m_row.cells[column - 1];
}

bool ImportReader::ReadFields() {
    bool isRead = true;
    for (const ImportField& row : kImportFields)
        isRead = ReadField(row) && isRead;
    return isRead && ChooseValue() && FindScrip();
}

// What need not be there is judged by those who use it.
bool ImportReader::ReadField(const ImportField& row) {
    const BasketField field = row.field;
    TableCell cell = CellOf(field);
    if (!m_columns[field]) {
        const auto found = m_mapping.defaults.find(field);
        if (found != m_mapping.defaults.end()) cell.text = found->second;
    }
    Word& last = m_last[field];
    if (last.isRead && last.kind == cell.kind && last.said == cell.text) {
        m_texts[field] = last.word;
        return true;
    }
    last.word.clear();
    const ImportFault fault = ReadCell(field, cell, last.word);
    last.isRead = fault == ImportFault::none;
    last.kind = cell.kind;
    last.said.assign(cell.text.substr(0, kLongestKept));
    last.isRead = last.isRead && last.said.size() == cell.text.size();
    m_texts[field] = last.word;
    const bool mayBeMissing = field == BasketField::amount || field == BasketField::quantity
                              || field == BasketField::investType || field == BasketField::token
                              || field == BasketField::tradingSymbol || field == BasketField::symbol
                              || field == BasketField::series;
    if (fault == ImportFault::none || (fault == ImportFault::missing && mayBeMissing)) return true;
    return Refuse(fault, field);
}

ImportFault ImportReader::ReadCell(BasketField field, const TableCell& cell, std::string& text) {
    switch (field) {
    case BasketField::amount:
    case BasketField::quantity:
        // A dash stands for nothing in many a table.
        if (PlainText(cell.text) == "-") return ImportFault::missing;
        return field == BasketField::amount ? ReadMoney(cell, m_mapping.unit, text)
                                            : ReadWholeNumber(cell, text);
    case BasketField::totalPeriod:
        return ReadWholeNumber(cell, text);
    case BasketField::startDateText:
        return ReadDate(cell, text);
    default:
        break;
    }
    if (const ImportFault fault = ReadCode(cell, text); fault != ImportFault::none) return fault;
    if (IsUpper(field)) MakeUpper(text);
    if (field == BasketField::account)
        return AllDigits(text) && text.size() < static_cast<std::size_t>(m_mapping.clientDigits)
                   ? ImportFault::zerosLost
                   : ImportFault::none;
    if (!HasWords(field)) return ImportFault::none;
    std::string word;
    const ImportFault fault = ReadWord(field, text, word);
    text = std::move(word);
    return fault;
}

ImportFault ImportReader::ReadDate(const TableCell& cell, std::string& text) {
    if (cell.kind != CellKind::text) return ReadDay(cell, m_mapping.pattern, text);
    if (m_days.size() >= kMostKnown) m_days.clear();
    m_key = cell.text;
    const auto [place, isNew] = m_days.try_emplace(m_key);
    if (isNew)
        if (const ImportFault fault = ReadDay(cell, m_mapping.pattern, place->second);
            fault != ImportFault::none) {
            m_days.erase(place);
            return fault;
        }
    text = place->second;
    return ImportFault::none;
}

// Without an invest type the value that is there says it; zero stands for nothing.
bool ImportReader::ChooseValue() {
    const auto has = [&](BasketField field) { return !m_texts[field].empty() && m_texts[field] != "0"; };
    if (m_texts[BasketField::investType].empty()) {
        if (has(BasketField::amount) && has(BasketField::quantity))
            return Refuse(ImportFault::twoValues, BasketField::quantity);
        m_texts[BasketField::investType] = has(BasketField::quantity) ? "qty" : "value";
    }
    const bool byValue = m_texts[BasketField::investType] == "value";
    const BasketField counts = byValue ? BasketField::amount : BasketField::quantity;
    m_texts[byValue ? BasketField::quantity : BasketField::amount] = {};
    return !m_texts[counts].empty() || Refuse(ImportFault::missing, counts);
}

const ScripNames& ImportReader::LookUp(std::string_view exchange, std::string_view series,
                                       std::string_view symbol) {
    m_key.assign(exchange).append(1, ',').append(series).append(1, ',').append(symbol);
    if (m_known.size() >= kMostKnown) m_known.clear();
    const auto [place, isNew] = m_known.try_emplace(m_key);
    if (isNew) place->second = m_scrips.Names(exchange, series, symbol);
    return place->second;
}

bool ImportReader::FindScrip() {
    std::string_view symbol = m_texts[BasketField::symbol], series = m_texts[BasketField::series];
    const std::string_view given = m_texts[BasketField::tradingSymbol], token = m_texts[BasketField::token];
    // "ARBORTEX-EQ" says both.
    if (const std::size_t dash = given.rfind('-'); dash != given.npos) {
        if (symbol.empty()) symbol = given.substr(0, dash);
        if (series.empty()) series = given.substr(dash + 1);
    }
    if (symbol.empty()) return Refuse(ImportFault::missing, BasketField::symbol);
    if (series.empty()) return Refuse(ImportFault::missing, BasketField::series);
    const ScripNames& names = LookUp(m_texts[BasketField::exchange], series, symbol);
    if (names.tradingSymbol.empty() || names.token.empty())
        return Refuse(ImportFault::unknownScrip, m_columns[BasketField::symbol] || given.empty()
                                                     ? BasketField::symbol
                                                     : BasketField::tradingSymbol);
    if (!given.empty() && given != names.tradingSymbol)
        return Refuse(ImportFault::otherScrip, BasketField::tradingSymbol);
    if (!token.empty() && token != names.token) {
        const bool isCut = WithoutZeros(token) == WithoutZeros(names.token);
        return Refuse(isCut ? ImportFault::zerosLost : ImportFault::otherScrip, BasketField::token);
    }
    m_texts[BasketField::symbol] = symbol;
    m_texts[BasketField::series] = series;
    m_texts[BasketField::tradingSymbol] = names.tradingSymbol;
    m_texts[BasketField::token] = names.token;
    return true;
}

// What could be read of the row, so that it can be mended as a line of a basket. A number or a date that could
// not be is left out: there it would be taken for paise, and for a day before its month.
std::string ImportReader::BasketLineOfRow() const {
    std::string line;
    for (const BasketField field : kBasketColumns) {
        std::string text(m_texts[field]);
        const bool isName = field != BasketField::amount && field != BasketField::quantity
                            && field != BasketField::totalPeriod && field != BasketField::startDateText;
        if (text.empty() && isName) text = PlainText(CellOf(field).text.substr(0, kLongestShown));
        for (char& c : text)
            if (c == ',' || (c >= 0 && c < ' ')) c = ' ';
        line.append(text).push_back(',');
    }
    return line + " ,";
}

void ImportReader::Reject(std::string reason) {
    RejectedLine rejected{m_row.line, BasketLineOfRow(), std::move(reason), {}};
    rejected.report =
        rejected.text + "\nfailed to load due to " + rejected.reason + Format(" In Line Number %d", m_row.line);
    m_lastReason = rejected.reason;
    m_sink.OnRejected(rejected, m_texts);
}

} // namespace planfold

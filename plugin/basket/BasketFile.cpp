#include "plugin/basket/BasketFile.h"

#include "plugin/base/Text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace planfold {

namespace {

// By the file's columns, with the units where a list's heading would mislead.
constexpr const char* kColumnNames[] = {
    "Client ID",       "Exchange",  "Series",    "Symbol",        "Token",      "Trading Symbol", "Product",
    "Amount in Paise", "Quantity",  "Frequency", "Start Seconds", "Start Date", "Total Period",   "Order Type",
    "Action",          "Side Word", "Firm",      "Validity",      "Invest Type"};

} // namespace

std::optional<BasketLines::Line> BasketLines::Next() {
    if (m_rest.empty()) return std::nullopt;
    const std::size_t end = m_rest.find('\n');
    Line line{m_rest.substr(0, end), end != m_rest.npos};
    m_rest.remove_prefix(line.isEnded ? end + 1 : m_rest.size());
    if (line.isEnded && line.text.ends_with('\r')) line.text.remove_suffix(1);
    return line;
}

bool BasketReader::Read(std::size_t lines) {
    while (lines-- > 0) {
        const auto line = m_lines.Next();
        if (!line) return false;
        ReadLine(*line);
    }
    return true;
}

void BasketReader::ReadLine(const BasketLines::Line& line) {
    ++m_number;
    BasketTexts& columns = m_columns;
    if (!SplitBasketLine(line.text, columns)) return Reject(line, {}, kInvalidFormat, false);
    auto refusal = m_check.Validate(columns, m_number);
    if (!refusal) {
        ++m_rows;
        m_sink.OnRow(columns);
        return;
    }
    if (!refusal->notice.empty()) m_sink.OnNotice(refusal->notice);
    if (refusal->logReason) m_sink.OnLog(refusal->reason);
    Reject(line, columns, std::move(refusal->reason), true);
}

void BasketReader::Reject(const BasketLines::Line& line, const BasketTexts& columns, std::string reason,
                          bool hasNumber) {
    // A zero ends the line for whoever reads the report; what is said behind it must not be lost.
    const std::string_view text = line.text.substr(0, line.text.find('\0'));
    RejectedLine rejected{m_number, std::string(line.text), std::move(reason), std::string(text)};
    rejected.report += line.isEnded ? "\nfailed to load" : "failed to load";
    if (!rejected.reason.empty()) rejected.report += " due to " + rejected.reason;
    if (!rejected.reason.empty() && hasNumber) rejected.report += Format(" In Line Number %d", m_number);
    m_lastReason = rejected.reason;
    m_sink.OnRejected(rejected, columns);
}

BeginReading ReadingOf(std::string text) {
    return [kept = std::make_shared<const std::string>(std::move(text))](
               const BasketRules& rules, ScripSource& scrips, BasketSink& sink) {
        return std::make_unique<BasketReader>(kept, rules, scrips, sink);
    };
}

void AppendBasketLine(const sBasketOrderData& row, std::string& text) {
    text.append(row.Columns()).append(", ,\n");
}

void AppendCsvField(std::string_view text, bool isLast, std::string& csv) {
    // What makes a spreadsheet calculate, and the apostrophe that keeps it from that.
    constexpr std::string_view arming = "=+-@\t'";
    const bool disarm = !text.empty() && arming.find(text[0]) != arming.npos;
    const bool quote = text.find_first_of(",;\t\"\r\n") != text.npos;
    if (quote) csv += '"';
    if (disarm) csv += '\'';
    for (const char c : text) {
        if (c == '"') csv += '"';
        csv += c == '\0' || c == '\r' || c == '\n' ? ' ' : c;
    }
    if (quote) csv += '"';
    csv += isLast ? '\n' : ',';
}

std::string RejectedTable(const std::vector<RejectedLine>& lines) {
    static_assert(std::size(kColumnNames) == std::size(kBasketColumns));
    std::string csv;
    for (const char* name : kColumnNames)
        AppendCsvField(name, false, csv);
    AppendCsvField("Reason", true, csv);
    for (const RejectedLine& line : lines) {
        // As many as it has; what is behind the last column is nobody's.
        std::string_view rest = std::string_view(line.text).substr(0, line.text.find('\0'));
        for (std::size_t i = 0; i < std::size(kBasketColumns); ++i) {
            const std::size_t end = std::min(rest.find(','), rest.size());
            AppendCsvField(rest.substr(0, end), false, csv);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        AppendCsvField(line.reason, true, csv);
    }
    return csv;
}

std::string BasketFileText(std::string lines) {
    const std::size_t mark = lines.size() - base::WithoutMark(lines).size();
    return lines.insert(0, lines.substr(0, mark));
}

std::string RejectedLines::Text() const {
    std::string text;
    for (const RejectedLine& line : lines)
        text.append(line.text).push_back('\n');
    return BasketFileText(std::move(text));
}

// A load puts each line in front of those before it.
std::string UnsentText(const BasketRows& rows, const BasketList& list) {
    std::string text;
    for (std::size_t row = list.RowCount(); row-- > 0;) {
        const RecordId record = list.RecordAt(row);
        if (!rows.IsSent(record)) AppendBasketLine(rows[record], text);
    }
    return BasketFileText(std::move(text));
}

} // namespace planfold

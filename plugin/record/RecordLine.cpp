#include "plugin/record/RecordLine.h"

#include "base/Text.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr std::string_view kColumns[kRecordFieldCount] = {
    "time",  "event",     "order_id", "registration",   "user", "source",
    "line",  "client",    "exchange", "trading_symbol", "side", "invest_type",
    "value", "frequency", "start",    "periods",        "text"};

constexpr std::string_view kEvents[] = {"sending", "not_sent", "registered", "modified", "cancelled", "paused",
                                        "resumed", "refused",  "in_doubt",   "found",    "absent"};

// What makes a spreadsheet calculate, and the apostrophe that keeps it from that.
constexpr std::string_view kArming = "=+-@\t'";

// Of "2027-03-05 14:02:03".
constexpr std::size_t kTimeLength = 19;

constexpr std::string_view kSeparators = ",;\t";

// A longer line is nobody's: what follows its last column is not looked at.
constexpr std::size_t kMostFields = 255;

// What a field cannot hold as it stands.
constexpr auto kSpecial = [] {
    std::array<bool, 256> special{};
    for (const char c : {',', ';', '\t', '"', '\n', '\r', '\0', kTornEnd[0]})
        special[static_cast<unsigned char>(c)] = true;
    return special;
}();

bool IsDisarmed(std::string_view text) {
    return text.size() > 1 && text[0] == '\'' && kArming.find(text[1]) != kArming.npos;
}

} // namespace

std::string_view NameOf(OrderEvent event) {
    return kEvents[static_cast<std::size_t>(event)];
}

std::optional<OrderEvent> EventNamed(std::string_view name) {
    const auto found = std::ranges::find(kEvents, name);
    if (found == std::end(kEvents)) return std::nullopt;
    return static_cast<OrderEvent>(found - std::begin(kEvents));
}

std::string_view RecordHeading() {
    static const std::string heading = [] {
        std::string line;
        for (const std::string_view column : kColumns)
            line.append(line.empty() ? "" : ",").append(column);
        return line + "\r\n";
    }();
    return heading;
}

void AppendRecordLine(const RecordTexts& texts, std::string& csv) {
    for (std::size_t i = 0; i < kRecordFieldCount; ++i) {
        const std::string_view text = texts[static_cast<RecordField>(i)];
        if (i > 0) csv += ',';
        const bool disarm = !text.empty() && kArming.find(text[0]) != kArming.npos;
        const auto isSpecial = [](char c) { return kSpecial[static_cast<unsigned char>(c)]; };
        if (!disarm && std::ranges::none_of(text, isSpecial)) {
            csv.append(text);
            continue;
        }
        const bool quote = text.find_first_of(",;\t\"") != text.npos;
        if (quote) csv += '"';
        if (disarm) csv += '\'';
        for (const char c : text) {
            if (c == '"') csv += '"';
            csv += c == '\n' || c == '\r' || c == '\0' || c == kTornEnd[0] ? ' ' : c;
        }
        if (quote) csv += '"';
    }
    csv += "\r\n";
}

RecordReader::RecordReader(std::string_view file) : m_rest(base::WithoutMark(file)) {
    TakeOurs();
}

void RecordReader::TakeOurs() {
    m_separator = ',';
    m_width = kRecordFieldCount;
    for (std::size_t i = 0; i < kRecordFieldCount; ++i)
        m_places[i] = i;
}

// False when a quote is not closed: the line was cut short. Fields that were quoted are put together in
// m_unquoted, which never grows beyond the line.
bool RecordReader::Split(std::string_view line) {
    m_fields.clear();
    m_unquoted.clear();
    m_unquoted.reserve(line.size());
    for (std::size_t at = 0;; ++at) {
        std::string_view field;
        if (at < line.size() && line[at] == '"') {
            const std::size_t start = m_unquoted.size();
            for (++at;; ++at) {
                if (at >= line.size()) return false;
                if (line[at] == '"' && (at + 1 >= line.size() || line[++at] != '"')) break;
                m_unquoted += line[at];
            }
            field = std::string_view(m_unquoted).substr(start);
            if (at < line.size() && line[at] == '"') ++at;
        }
        const std::size_t end = std::min(line.find(m_separator, at), line.size());
        if (field.empty()) field = line.substr(at, end - at);
        at = end;
        if (IsDisarmed(field)) field.remove_prefix(1);
        if (m_fields.size() < kMostFields) m_fields.push_back(field);
        if (at >= line.size()) return true;
    }
}

// A heading begins with the first column's name and tells where each column stands; those that this version
// does not know are left out. A spreadsheet separates by what its country writes.
bool RecordReader::TakeHeading(std::string_view line) {
    const std::string_view first = kColumns[0];
    line.remove_prefix(line.starts_with('"'));
    if (!line.starts_with(first)) return false;
    line.remove_prefix(first.size());
    line.remove_prefix(line.starts_with('"'));
    if (line.empty() || kSeparators.find(line[0]) == kSeparators.npos) return false;
    m_separator = line[0];
    return true;
}

std::optional<RecordTexts> RecordReader::Next() {
    while (!m_rest.empty()) {
        const std::size_t feed = std::min(m_rest.find('\n'), m_rest.size());
        const bool isEnded = feed < m_rest.size();
        std::string_view line = m_rest.substr(0, feed);
        m_rest.remove_prefix(feed + isEnded);
        if (line.ends_with('\r')) line.remove_suffix(1);
        const bool isTorn = !isEnded || line.ends_with(kTornEnd[0]);
        if (line.ends_with(kTornEnd[0])) line.remove_suffix(1);
        if (line.empty()) continue;
        const bool isHeading = TakeHeading(line);
        // Behind what a spreadsheet has saved with its own separator stand lines of ours again.
        if (m_separator != ',' && line.size() > kTimeLength && line[kTimeLength] == ',') TakeOurs();
        const bool isWhole = Split(line);
        if (isHeading) {
            for (std::size_t i = 0; i < kRecordFieldCount; ++i)
                m_places[i] =
                    static_cast<std::size_t>(std::ranges::find(m_fields, kColumns[i]) - m_fields.begin());
            m_width = m_fields.size();
            continue;
        }
        RecordTexts texts;
        for (std::size_t i = 0; i < kRecordFieldCount; ++i)
            if (m_places[i] < m_fields.size()) texts[static_cast<RecordField>(i)] = m_fields[m_places[i]];
        // Of a line that was cut short the last field may lack characters; a whole one says so itself. What is
        // about to be sent was not, unless its line has come to its end.
        const auto event = EventNamed(texts[RecordField::event]);
        const bool mayCount = !isTorn || (m_fields.size() >= m_width && event != OrderEvent::sending);
        if (isWhole && event && mayCount) return texts;
        ++m_unread;
    }
    return std::nullopt;
}

} // namespace planfold

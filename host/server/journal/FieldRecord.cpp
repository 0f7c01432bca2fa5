#include "host/server/journal/FieldRecord.h"

#include "base/Text.h"
#include "host/connectvesk/Wire.h"

#include <array>
#include <memory_resource>
#include <optional>

namespace vesk {

FieldRecord::Field FieldRecord::FieldAt(std::size_t at) const {
    const char* head = m_fields.data() + at;
    return {qmx::Load(head), {head + kHeadSize, qmx::Load(head + 4)}};
}

std::size_t FieldRecord::PlaceOf(std::uint32_t tag) const {
    const char* const fields = m_fields.data();
    const std::size_t end = m_fields.size();
    std::size_t at = 0;
    while (at < end && qmx::Load(fields + at) < tag)
        at += kHeadSize + qmx::Load(fields + at + 4);
    return at;
}

std::string_view FieldRecord::Text(std::uint32_t tag) const {
    const std::size_t at = PlaceOf(tag);
    if (at == m_fields.size()) return {};
    const Field field = FieldAt(at);
    return field.tag == tag ? field.text : std::string_view();
}

void FieldRecord::Set(std::uint32_t tag, std::string_view text) {
    // Made apart, because `text` may be a field of this very record.
    std::string field;
    field.reserve(kHeadSize + text.size());
    field.resize(kHeadSize);
    qmx::Store(field.data(), tag);
    qmx::Store(field.data() + 4, static_cast<std::uint32_t>(text.size()));
    field += text;
    const std::size_t at = PlaceOf(tag);
    const bool isThere = at < m_fields.size() && FieldAt(at).tag == tag;
    m_fields.replace(at, isThere ? SizeOf(FieldAt(at)) : 0, field);
}

void FieldRecord::AddTo(qmx::MessageWriter& writer) const {
    for (std::size_t at = 0; at < m_fields.size();) {
        const Field field = FieldAt(at);
        writer.Add(field.tag, field.text);
        at += SizeOf(field);
    }
}

// The wire's texts are bytes in any code page, while JSON is UTF-8: each byte becomes the code point of the
// same number, and comes back.
namespace {

void AppendQuoted(std::string& json, std::string_view bytes) {
    json += '"';
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (byte < 0x20) {
            json += "\\u00";
            json += static_cast<char>('0' + (byte >> 4));
            json += "0123456789abcdef"[byte & 15];
        } else if (byte < 0x80) {
            json += c;
        } else {
            json += static_cast<char>(0xC0 | (byte >> 6));
            json += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    json += '"';
}

} // namespace

void FieldRecord::AppendJson(std::string& json) const {
    json.reserve(json.size() + 2 * m_fields.size());
    json += '{';
    for (std::size_t at = 0; at < m_fields.size();) {
        const Field field = FieldAt(at);
        if (at != 0) json += ',';
        json += '"';
        json += std::to_string(field.tag);
        json += "\":";
        AppendQuoted(json, field.text);
        at += SizeOf(field);
    }
    json += '}';
}

std::string FieldRecord::JsonAs(std::string_view kind) const {
    std::string json = "{\"";
    json.append(kind).append("\":");
    AppendJson(json);
    json += '}';
    return json;
}

bool RecordReader::Take(std::string_view expected) {
    if (!m_rest.starts_with(expected)) return false;
    m_rest.remove_prefix(expected.size());
    return true;
}

bool RecordReader::Take(char expected) {
    if (m_rest.empty() || m_rest.front() != expected) return false;
    m_rest.remove_prefix(1);
    return true;
}

bool RecordReader::TakeFields(FieldRecord& record) {
    if (!Take('{')) return false;
    // Nearly every record fits, so that only what it keeps is memory of the heap.
    std::array<char, 1024> room;
    std::pmr::monotonic_buffer_resource memory(room.data(), room.size());
    std::pmr::string fields(&memory);
    fields.reserve(room.size() - 1);
    std::string unescaped;
    std::string_view text;
    std::optional<std::uint32_t> last;
    do {
        if (!TakeText(text, unescaped) || !Take(':')) return false;
        const std::optional<std::uint32_t> tag = base::ReadNumber<std::uint32_t>(text);
        if (!tag || !TakeText(text, unescaped)) return false;
        // As a server writes them each is the last so far.
        if (last && *tag <= *last) {
            record.m_fields = fields;
            record.Set(*tag, text);
            fields = record.m_fields;
            continue;
        }
        last = tag;
        char head[FieldRecord::kHeadSize];
        qmx::Store(head, *tag);
        qmx::Store(head + 4, static_cast<std::uint32_t>(text.size()));
        fields.append(head, sizeof head).append(text);
    } while (Take(','));
    record.m_fields = fields;
    return Take('}');
}

bool RecordReader::TakeAll(std::string_view kind, FieldRecord& record) {
    return Take("{\"") && Take(kind) && Take("\":") && TakeFields(record) && Take("}") && AtEnd();
}

bool RecordReader::TakeText(std::string_view& text, std::string& unescaped) {
    // Nearly all are letters and digits, and stand as they are.
    static constexpr std::array<bool, 256> plain = [] {
        std::array<bool, 256> table{};
        for (std::size_t byte = ' '; byte <= '~'; ++byte)
            table[byte] = byte != '"' && byte != '\\';
        return table;
    }();
    std::size_t end = 1;
    while (end < m_rest.size() && plain[static_cast<unsigned char>(m_rest[end])])
        ++end;
    if (end < m_rest.size() && m_rest[end] == '"' && m_rest[0] == '"') {
        text = m_rest.substr(1, end - 1);
        m_rest.remove_prefix(end + 1);
        return true;
    }
    if (!TakeQuoted(unescaped)) return false;
    text = unescaped;
    return true;
}

bool RecordReader::TakeQuoted(std::string& bytes) {
    bytes.clear();
    if (!Take('"')) return false;
    while (!m_rest.empty()) {
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        if (byte == '"') return true;
        if (byte < 0x20) return false;
        if (byte == '\\' ? !TakeEscaped(bytes) : !TakeCodePoint(byte, bytes)) return false;
    }
    return false;
}

bool RecordReader::TakeCodePoint(unsigned char lead, std::string& bytes) {
    if (lead < 0x80) {
        bytes += static_cast<char>(lead);
        return true;
    }
    if ((lead != 0xC2 && lead != 0xC3) || m_rest.empty()) return false;
    const auto follow = static_cast<unsigned char>(m_rest.front());
    if ((follow & 0xC0) != 0x80) return false;
    m_rest.remove_prefix(1);
    bytes += static_cast<char>(((lead & 0x03) << 6) | (follow & 0x3F));
    return true;
}

bool RecordReader::TakeEscaped(std::string& bytes) {
    static constexpr std::string_view names = "\"\\/bfnrt";
    static constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
    if (m_rest.empty()) return false;
    const char name = m_rest.front();
    m_rest.remove_prefix(1);
    if (const std::size_t found = names.find(name); found != names.npos) {
        bytes += meant[found];
        return true;
    }
    constexpr std::size_t digits = 4;
    if (name != 'u' || m_rest.size() < digits) return false;
    const auto number = base::ReadNumber<unsigned>(m_rest.substr(0, digits), 16);
    if (!number || *number > 0xFF) return false;
    m_rest.remove_prefix(digits);
    bytes += static_cast<char>(*number);
    return true;
}

} // namespace vesk

// A record that the server holds and journals: wire texts by tag.
//
// There may be a million, so all fields lie in one block of memory: tag, length and text after one another, in
// the order of the tags.
//
// Thread: any; plain values.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "sdk/Tags.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

class FieldRecord {
public:
    // Empty when the record has no such field.
    std::string_view Text(std::uint32_t tag) const;
    void Set(std::uint32_t tag, std::string_view text);

    // All fields, behind those that the message already has.
    void AddTo(qmx::MessageWriter& writer) const;
    // Room for an ordinary record, so that setting its fields takes no memory time and again.
    void Reserve() { m_fields.reserve(640); }
    // Gives back the memory that setting left over.
    void Shrink() { m_fields.shrink_to_fit(); }
    bool operator==(const FieldRecord&) const = default;

    // The journal's form: of the fields, and as a record of nothing else.
    void AppendJson(std::string& json) const;
    std::string JsonAs(std::string_view kind) const;

private:
    friend class RecordReader;
    struct Field {
        std::uint32_t tag;
        std::string_view text;
    };
    // `at` is where a field stands.
    Field FieldAt(std::size_t at) const;
    static std::size_t SizeOf(const Field& field) { return kHeadSize + field.text.size(); }
    // Where the field stands or belongs.
    std::size_t PlaceOf(std::uint32_t tag) const;

    static constexpr std::size_t kHeadSize = 8;

    std::string m_fields;
};

// Reads the content of a journal record from its front. Only the form that records have ever been written in is
// taken: objects of texts, without blanks. After a refusal nothing is known of what was read.
class RecordReader {
public:
    explicit RecordReader(std::string_view text) : m_rest(text) {}

    bool AtEnd() const { return m_rest.empty(); }
    bool Take(std::string_view expected);
    bool Take(char expected);
    // It fails on a record without fields.
    bool TakeFields(FieldRecord& record);
    // A whole record, as JsonAs makes it.
    bool TakeAll(std::string_view kind, FieldRecord& record);

private:
    // It points into what is read, or into `unescaped`.
    bool TakeText(std::string_view& text, std::string& unescaped);
    bool TakeQuoted(std::string& bytes);
    bool TakeCodePoint(unsigned char lead, std::string& bytes);
    // Reads what follows a backslash.
    bool TakeEscaped(std::string& bytes);

    std::string_view m_rest;
};

} // namespace vesk

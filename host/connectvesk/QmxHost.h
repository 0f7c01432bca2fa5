// The host's side of the connection library: the bytes of a built message, a reading handle over received
// bytes, and a dump for logs and tests.
//
// Thread:  as in sdk/Qmx.h. Failure: 0 with the error filled; nothing is thrown.
#pragma once

#include "sdk/Qmx.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

extern "C" {
// The bytes to send of the message that was built in, or opened with, `message`. They live in the scratch
// buffer, or the received bytes, behind the handle.
QMX_API int qmx_message_bytes(void* message, QmxDatum* bytes, QmxError* error);
// Opens a reading handle over `bytes`, checked completely; they must outlive it. Adding to it is refused.
// A message cut short is told apart from a damaged one in the text; both are kQmxCorrupt.
QMX_API int qmx_open_message(void** message, const QmxDatum* bytes, QmxError* error);
// Sets `*message` to null.
QMX_API int qmx_close_message(void** message, QmxError* error);
// One line "tag=value tag=value|value", zero-terminated and cut to `size` bytes; bytes outside printable
// ASCII appear as \xNN.
QMX_API int qmx_dump_message(void* message, char* text, std::uint32_t size, QmxError* error);
}

namespace qmx {

// A value for qmx_add_data; an empty text is an absent value. Points into `text`.
inline QmxDatum Datum(std::string_view text) {
    if (text.empty()) return {nullptr, 0};
    return {text.data(), static_cast<std::uint32_t>(text.size())};
}
inline std::string_view View(const QmxDatum& datum) {
    return {datum.data, datum.length};
}

// Builds one message after another in a scratch buffer of its own. The first failure sticks: later fields
// are not added, and Finish gives an empty text.
class MessageWriter {
public:
    static constexpr std::uint32_t kDefaultCapacity = 32768;

    explicit MessageWriter(std::uint32_t capacity = kDefaultCapacity) {
        m_good = qmx_open_scratch(&m_scratch, capacity, &m_error) != 0
                 && qmx_ctor_primecb(&m_message, &m_error) != 0;
        if (m_good) Start();
    }
    MessageWriter(const MessageWriter&) = delete;
    MessageWriter& operator=(const MessageWriter&) = delete;
    ~MessageWriter() {
        QmxError ignored;
        qmx_dtor_primecb(&m_message, &ignored);
        qmx_close_scratch(&m_scratch, &ignored);
    }

    // Begins anew and forgets an earlier failure.
    MessageWriter& Start() {
        m_good = m_scratch != nullptr && m_message != nullptr;
        if (!m_good) return *this;
        *static_cast<std::uint32_t*>(m_scratch) = 0;
        m_good = qmx_start_msg(m_message, m_scratch, &m_error) != 0;
        return *this;
    }
    MessageWriter& Add(std::uint32_t tag, std::string_view value) {
        const QmxDatum datum = Datum(value);
        return AddValues(tag, &datum, 1);
    }
    MessageWriter& AddValues(std::uint32_t tag, const QmxDatum* values, std::uint32_t count) {
        m_good = m_good && qmx_add_data(m_message, tag, count, values, &m_error) != 0;
        return *this;
    }

    bool Good() const { return m_good; }
    const QmxError& Error() const { return m_error; }
    // The handle the message is built in, for a SendRequest.
    void* Handle() const { return m_message; }
    // A copy of the message's bytes; empty after a failure.
    std::string Finish() {
        QmxDatum bytes{};
        m_good = m_good && qmx_message_bytes(m_message, &bytes, &m_error) != 0;
        return m_good ? std::string(View(bytes)) : std::string();
    }

private:
    void* m_scratch = nullptr;
    void* m_message = nullptr;
    QmxError m_error{};
    bool m_good = false;
};

// A reading handle over bytes that outlive it.
class MessageReader {
public:
    explicit MessageReader(std::string_view bytes) {
        const QmxDatum datum{bytes.data(), static_cast<std::uint32_t>(bytes.size())};
        m_good = qmx_open_message(&m_message, &datum, &m_error) != 0;
    }
    MessageReader(const MessageReader&) = delete;
    MessageReader& operator=(const MessageReader&) = delete;
    ~MessageReader() {
        QmxError ignored;
        qmx_close_message(&m_message, &ignored);
    }

    bool Good() const { return m_good; }
    const QmxError& Error() const { return m_error; }
    void* Handle() const { return m_message; }

private:
    void* m_message = nullptr;
    QmxError m_error{};
    bool m_good = false;
};

// Reading from any handle. A view points into the message; an absent field or value reads as empty.
inline bool Has(void* message, std::uint32_t tag) {
    QmxField field;
    QmxError error;
    return qmx_get_field(message, tag, &field, &error) != 0;
}
inline std::uint32_t Count(void* message, std::uint32_t tag) {
    QmxField field;
    QmxError error;
    return qmx_get_field(message, tag, &field, &error) != 0 ? field.count : 0;
}
inline std::string_view Text(void* message, std::uint32_t tag, std::uint32_t index = 0) {
    QmxDatum datum{};
    QmxError error;
    return qmx_get_data(message, tag, index, &datum, &error) != 0 ? View(datum) : std::string_view();
}
inline std::string Dump(void* message) {
    char line[4096];
    QmxError error;
    if (qmx_dump_message(message, line, sizeof line, &error) != 0) return line;
    return "(" + std::string(error.text) + ")";
}

} // namespace qmx

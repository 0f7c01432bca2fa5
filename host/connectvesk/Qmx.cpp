// The library's exports: judge the handles, then hand on.

#include "host/connectvesk/Fields.h"
#include "host/connectvesk/QmxHost.h"

using qmx::Fail;
using qmx::Message;
using qmx::Succeed;
using qmx::TellBadMessage;

namespace {

Message* Readable(void* handle, QmxError* error) {
    Message* message = qmx::AsMessage(handle);
    if (!message) TellBadMessage(error);
    return message && CheckReadable(*message, error) ? message : nullptr;
}

int CloseMessage(void** handle, QmxError* error) {
    Message* message = handle ? qmx::AsMessage(*handle) : nullptr;
    if (!message) return TellBadMessage(error);
    qmx::Close(message);
    *handle = nullptr;
    return Succeed(error);
}

// Text cut at the end of the caller's space, always zero-terminated.
class Line {
public:
    Line(char* text, std::uint32_t size) : m_at(text), m_end(text + size - 1) {}
    ~Line() { *m_at = '\0'; }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    void Put(char c) {
        if (m_at != m_end) *m_at++ = c;
    }
    void Put(const char* text) {
        while (*text)
            Put(*text++);
    }
    void PutValue(const QmxDatum& datum) {
        for (std::uint32_t i = 0; i < datum.length; ++i) {
            const auto byte = static_cast<unsigned char>(datum.data[i]);
            if (byte >= 0x20 && byte < 0x7F && byte != '\\') {
                Put(static_cast<char>(byte));
                continue;
            }
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte));
            Put(escaped);
        }
    }
    bool Full() const { return m_at == m_end; }

private:
    char* m_at;
    char* m_end;
};

} // namespace

extern "C" {

int qmx_open_scratch(void** scratch, std::uint32_t size, QmxError* error) {
    if (!scratch) return Fail(error, kQmxBadArgument, "no place for the scratch buffer");
    if (size < qmx::kFillSize || size > qmx::kLargestScratch)
        return Fail(error, kQmxBadArgument, "a scratch buffer cannot have %u bytes", size);
    void* opened = qmx::NewScratch(size);
    if (!opened) return Fail(error, kQmxNoMemory, "no memory for a scratch buffer of %u bytes", size);
    *scratch = opened;
    return Succeed(error);
}

int qmx_close_scratch(void** scratch, QmxError* error) {
    qmx::ScratchPrefix* prefix = scratch ? qmx::PrefixOf(*scratch) : nullptr;
    if (!prefix) return Fail(error, kQmxBadHandle, "not an open scratch buffer");
    qmx::Close(prefix);
    *scratch = nullptr;
    return Succeed(error);
}

int qmx_ctor_primecb(void** primeCb, QmxError* error) {
    if (!primeCb) return Fail(error, kQmxBadArgument, "no place for the message handle");
    Message* message = qmx::NewMessage();
    if (!message) return Fail(error, kQmxNoMemory, "no memory for a message handle");
    *primeCb = message;
    return Succeed(error);
}

int qmx_dtor_primecb(void** primeCb, QmxError* error) {
    return CloseMessage(primeCb, error);
}

int qmx_start_msg(void* primeCb, void* scratch, QmxError* error) {
    Message* message = qmx::AsMessage(primeCb);
    return message ? StartMessage(*message, scratch, error) : TellBadMessage(error);
}

int qmx_add_data(void* primeCb, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error) {
    return qmx::AddField(primeCb, tag, count, data, error);
}

int qmx_get_field(void* handle, std::uint32_t tag, QmxField* field, QmxError* error) {
    Message* message = Readable(handle, error);
    if (!message) return 0;
    if (!field) return Fail(error, kQmxBadArgument, "no place for the field");
    qmx::FoundField found;
    if (!FindField(*message, tag, found, error)) return 0;
    *field = {found.header.tag, found.header.count};
    return 1;
}

int qmx_get_data(void* handle, std::uint32_t tag, std::uint32_t index, QmxDatum* datum, QmxError* error) {
    return qmx::ReadField(handle, tag, index, datum, error);
}

int qmx_message_bytes(void* handle, QmxDatum* bytes, QmxError* error) {
    const Message* message = Readable(handle, error);
    if (!message) return 0;
    if (!bytes) return Fail(error, kQmxBadArgument, "no place for the bytes");
    *bytes = {message->bytes, message->used};
    return Succeed(error);
}

int qmx_open_message(void** handle, const QmxDatum* bytes, QmxError* error) {
    if (!handle || !bytes) return Fail(error, kQmxBadArgument, "no bytes, or no place for the handle");
    Message* message = qmx::NewMessage();
    if (!message) return Fail(error, kQmxNoMemory, "no memory for a message handle");
    if (!OpenReceived(*message, *bytes, error)) {
        qmx::Close(message);
        return 0;
    }
    *handle = message;
    return 1;
}

int qmx_close_message(void** handle, QmxError* error) {
    return CloseMessage(handle, error);
}

int qmx_dump_message(void* handle, char* text, std::uint32_t size, QmxError* error) {
    const Message* message = Readable(handle, error);
    if (!message) return 0;
    if (!text || size == 0) return Fail(error, kQmxBadArgument, "no place for the text");
    Line line(text, size);
    std::uint32_t position = qmx::kHeaderSize;
    while (position < message->used && !line.Full()) {
        if (position != qmx::kHeaderSize) line.Put(' ');
        qmx::FoundField found;
        if (!NextField(*message, position, found, error)) return 0;
        char tag[16];
        std::snprintf(tag, sizeof tag, "%lu=", static_cast<unsigned long>(found.header.tag));
        line.Put(tag);
        for (std::uint32_t i = 0; i < found.header.count && !line.Full(); ++i) {
            QmxDatum datum;
            if (!ReadValue(*message, found, i, datum, error)) return 0;
            if (i) line.Put('|');
            line.PutValue(datum);
        }
    }
    return Succeed(error);
}

} // extern "C"

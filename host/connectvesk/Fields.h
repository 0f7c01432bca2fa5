// Building and looking up the fields of one message. Every step checks its bounds against the message's
// own length, so that bytes overwritten behind our back are an error and never a wrong read.
#pragma once

#include "host/connectvesk/Handles.h"
#include "sdk/Qmx.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace qmx {

// A field that was found, with the position of its first value.
struct FoundField {
    FieldHeader header{};
    std::uint32_t values = 0;
};

int StartMessage(Message& message, void* scratch, QmxError* error);
int FindField(Message& message, std::uint32_t tag, FoundField& found, QmxError* error);
int ReadValue(const Message& message, const FoundField& field, std::uint32_t index, QmxDatum& datum,
              QmxError* error);

// These two, called for every field, judge the handle themselves.
int AddField(void* handle, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error);
int ReadField(void* handle, std::uint32_t tag, std::uint32_t index, QmxDatum* datum, QmxError* error);

// Non-zero while the message can be read; tells why not.
int CheckReadable(const Message& message, QmxError* error);
// Checks received bytes completely and makes `message` read them.
int OpenReceived(Message& message, const QmxDatum& bytes, QmxError* error);
// The field at `position`, which moves behind it. Non-zero when it lies wholly inside the message.
int NextField(const Message& message, std::uint32_t& position, FoundField& found, QmxError* error);

int TellBadMessage(QmxError* error);

// Filling the error record, which a caller may leave out.
inline int Succeed(QmxError* error) {
    if (error) {
        error->code = kQmxOk;
        error->text[0] = '\0';
    }
    return 1;
}

// Always 0, the failure of every call.
#ifdef __GNUC__
__attribute__((format(printf, 3, 4), cold))
#endif
inline int
Fail(QmxError* error, QmxErrorCode code, const char* format, ...) {
    if (!error) return 0;
    error->code = code;
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(error->text, sizeof error->text, format, arguments);
    va_end(arguments);
    return 0;
}

} // namespace qmx

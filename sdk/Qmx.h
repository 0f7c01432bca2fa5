// The connection library: building and reading tagged messages.
//
// Thread:   one message and one scratch buffer are used by one thread at a time (the GUI thread).
// Owner:    the caller owns what it opened and closes it; a message given to a notifier is the host's.
// Lifetime: values read point into the message; they live until the message is built anew, closed, or the
//           notifier returns.
// Failure:  every call returns non-zero for success; otherwise 0 with `QmxError` filled. A null handle
//           gives 0. Nothing is ever read or written outside the scratch buffer.
//
// Example, a message of one field that is built and sent, and a value of an answer (tags stand in Tags.h):
//
//     void *scratch = nullptr, *message = nullptr;
//     QmxError error{};
//     if (!qmx_open_scratch(&scratch, 32'768, &error)) return Log(error.text);
//     if (!qmx_ctor_primecb(&message, &error)) return Log(error.text);
//     *static_cast<std::uint32_t*>(scratch) = 0;
//     const QmxDatum account{"C001", 4};
//     if (qmx_start_msg(message, scratch, &error) && qmx_add_data(message, tag::account, 1, &account, &error))
//         control->SendRequest(&number, message, 0, &error);
//     ...
//     QmxDatum told{};
//     if (qmx_get_data(answer, tag::userText, 0, &told, &error)) Show({told.data, told.length});
#pragma once

#include <cstddef>
#include <cstdint>

// One value: bytes without a closing zero. An absent value is a null pointer with length 0.
struct QmxDatum {
    const char* data;
    std::uint32_t length; // bytes
};
static_assert(sizeof(QmxDatum) == 16 && offsetof(QmxDatum, length) == 8);

struct QmxField {
    std::uint32_t tag;
    std::uint32_t count; // values under the tag
};
static_assert(sizeof(QmxField) == 8);

// What `QmxError::code` holds. The plug-in tells only kQmxFieldAbsent from the rest.
enum QmxErrorCode : std::int32_t {
    kQmxOk = 0,
    kQmxBadHandle = 1,
    kQmxNoMemory = 2,
    kQmxBufferFull = 3,
    kQmxBadArgument = 4,
    kQmxBadIndex = 5,
    kQmxFieldAbsent = 6,
    kQmxCorrupt = 7,
};

struct QmxError {
    std::int32_t code;
    char text[252]; // for a log, zero-terminated
};
static_assert(sizeof(QmxError) == 256 && offsetof(QmxError, text) == 4);

#if defined(_WIN32) && defined(QMX_BUILDING)
#define QMX_API __declspec(dllexport)
#elif defined(_WIN32)
#define QMX_API __declspec(dllimport)
#else
#define QMX_API
#endif

extern "C" {
// `*scratch` becomes the buffer itself, whose first 32-bit word is the fill length; `size` in bytes.
// The previous value of `*scratch` is overwritten, not closed.
QMX_API int qmx_open_scratch(void** scratch, std::uint32_t size, QmxError* error);
// Sets `*scratch` to null.
QMX_API int qmx_close_scratch(void** scratch, QmxError* error);
QMX_API int qmx_ctor_primecb(void** primeCb, QmxError* error);
// Sets `*primeCb` to null.
QMX_API int qmx_dtor_primecb(void** primeCb, QmxError* error);

// Begins an empty message in `scratch`, whose fill length the caller has set to 0.
QMX_API int qmx_start_msg(void* primeCb, void* scratch, QmxError* error);
// Appends one field with `count` values. The bytes are copied.
QMX_API int qmx_add_data(void* primeCb, std::uint32_t tag, std::uint32_t count, const QmxDatum* data,
                         QmxError* error);
// Non-zero when the message has the field.
QMX_API int qmx_get_field(void* message, std::uint32_t tag, QmxField* field, QmxError* error);
// Value `index` of the field. kQmxFieldAbsent without the field, another code beyond its count.
QMX_API int qmx_get_data(void* message, std::uint32_t tag, std::uint32_t index, QmxDatum* datum,
                         QmxError* error);
}

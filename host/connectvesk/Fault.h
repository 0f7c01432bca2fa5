// Filling the error record, which a caller may leave out.
#pragma once

#include "sdk/Qmx.h"

#include <cstdarg>
#include <cstdio>

namespace qmx {

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

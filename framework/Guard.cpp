#include "framework/Guard.h"

#include <cstdio>

#ifdef _WIN32
#include <windows.h>
#endif

namespace framework {

void ReportFault(const char* what, const std::source_location& where) noexcept {
    char line[512];
    std::snprintf(line, sizeof line, "%s:%u: %s: %s\n", where.file_name(), static_cast<unsigned>(where.line()),
                  where.function_name(), what);
#ifdef _WIN32
    OutputDebugStringA(line);
#else
    std::fputs(line, stderr);
#endif
}

} // namespace framework

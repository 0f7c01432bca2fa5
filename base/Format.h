// Numbers as text, whatever locale the process has: any of its modules may set one, with another decimal point.
#pragma once

#include <string>

namespace base {

#ifdef __MINGW32__
#define BASE_PRINTF gnu_printf
#else
#define BASE_PRINTF printf
#endif

// As printf does in the "C" locale. The conversions are d, i, u, c, s, f and g, with "-", "0", a width, a
// precision (also "*") and a length. The format is always one of our own literals, never text from outside.
[[gnu::format(BASE_PRINTF, 1, 2)]] std::string Format(const char* format, ...);

} // namespace base

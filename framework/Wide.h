// Text of 16-bit characters, as the system's names are, and of a code page.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace framework {

std::wstring Wide(std::string_view text, UINT codePage);
// What the code page lacks becomes its default character.
std::string Narrow(std::wstring_view wide, UINT codePage);

// `ansi` is in the system's ANSI code page.
std::string Utf8(std::string_view ansi);

} // namespace framework

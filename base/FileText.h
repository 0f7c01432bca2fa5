// The encodings in which other programs save text files.
#pragma once

#include <string_view>

namespace base {

// A byte order mark at the start of a file belongs to no field.
std::string_view WithoutMark(std::string_view text);

// Whether it is UTF-16, by its mark or by its looks: nothing can be read from it.
bool IsUtf16(std::string_view text);

} // namespace base

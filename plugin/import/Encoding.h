// The encodings in which spreadsheets and other programs leave text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace planfold {

void AppendUtf8(std::uint32_t character, std::string& text);

// The file's text as UTF-8, without its byte order mark: of UTF-8, of UTF-16 of either order, and of what is
// neither, which is Windows-1252. A view into `bytes`, or into `kept` where it had to be made.
std::string_view TextInUtf8(std::string_view bytes, std::string& kept);

} // namespace planfold

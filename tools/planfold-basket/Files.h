// Texts from and to files, or the program's own streams.
#pragma once

#include "host/files/FileFault.h"

#include <string>
#include <string_view>

namespace basket {

// "-" is standard input; paths are UTF-8.
vesk::Loaded<std::string> ReadText(const std::string& path);

// Line feeds become the platform's line ends; "-" is standard output. A file is replaced as a whole or not at
// all. False when it cannot be.
bool WriteText(const std::string& path, std::string_view text);

} // namespace basket

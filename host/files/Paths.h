// Paths and the words of a command line are UTF-8 everywhere in the host, so that they may name any file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// As the system wants it.
std::filesystem::path PathOf(std::string_view text);
std::string TextOfPath(const std::filesystem::path& path);

// Without the program's name. The system is asked where what `main` is given is in a code page.
std::vector<std::string> CommandWords(int count, const char* const* words);

} // namespace vesk

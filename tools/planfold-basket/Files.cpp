#include "tools/planfold-basket/Files.h"

#include "tools/planfold-basket/Options.h"

#include <filesystem>
#include <iostream>
#include <iterator>
#include <system_error>

namespace basket {

vesk::Loaded<std::string> ReadText(const std::string& path) {
    if (path != kStandardStream) return vesk::ReadWholeFile(path);
    std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    if (std::cin.bad()) return vesk::FileFault{path, 0, "standard input cannot be read"};
    return text;
}

bool WriteText(const std::string& path, std::string_view text) {
    if (path == kStandardStream)
        return static_cast<bool>(
            std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush());
    constexpr std::ios::openmode asText{};
    std::error_code error;
    // A device or a pipe has nothing to lose, and must not be replaced.
    if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error))
        return vesk::WriteInPlace(path, text, asText);
    return vesk::WriteWholeFile(path, text, asText);
}

} // namespace basket

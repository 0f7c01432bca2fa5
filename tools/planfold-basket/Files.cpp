#include "tools/planfold-basket/Files.h"

#include "host/files/Paths.h"
#include "tools/planfold-basket/Options.h"

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
    const std::filesystem::path file = vesk::PathOf(path);
    if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        return vesk::WriteInPlace(path, text, asText);
    return vesk::WriteWholeFile(path, text, asText);
}

} // namespace basket

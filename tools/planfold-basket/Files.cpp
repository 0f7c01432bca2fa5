#include "tools/planfold-basket/Files.h"

#include "tools/planfold-basket/Options.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace basket {
namespace {

namespace fs = std::filesystem;

bool WriteInPlace(const std::string& path, std::string_view text) {
    std::ofstream stream(path, std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    return !stream.fail();
}

} // namespace

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
    std::error_code error;
    // A device or a pipe has nothing to lose, and must not be replaced.
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) return WriteInPlace(path, text);
    const std::string draft = path + ".new";
    if (WriteInPlace(draft, text))
        fs::rename(draft, path, error);
    else
        error = std::make_error_code(std::errc::io_error);
    if (!error) return true;
    std::error_code ignored;
    fs::remove(draft, ignored);
    return false;
}

} // namespace basket

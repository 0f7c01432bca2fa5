#include "host/terminal/core/FileFault.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace vesk {

std::string_view FileNameOf(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

Loaded<std::string> ReadWholeFile(const std::string& path) {
    const std::string name(FileNameOf(path));
    std::error_code error;
    // A stream opens a folder on some systems and then reads nothing, which would look like an empty file.
    if (!std::filesystem::is_regular_file(path, error)) return FileFault{name, 0, "file not found"};
    std::ifstream stream(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) return FileFault{name, 0, "file cannot be read"};
    return text;
}

bool WriteWholeFile(const std::string& path, std::string_view text) {
    const std::string draft = path + ".new";
    {
        std::ofstream stream(draft, std::ios::binary | std::ios::trunc);
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
        stream.flush();
        if (!stream) return false;
    }
    std::error_code error;
    std::filesystem::rename(draft, path, error);
    return !error;
}

} // namespace vesk

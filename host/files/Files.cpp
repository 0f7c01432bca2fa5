#include "host/files/Files.h"

#include "base/Text.h"

#include <fstream>
#include <iterator>
#include <system_error>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

namespace vesk {

std::string_view FileNameOf(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

Loaded<std::string> ReadWholeFile(const std::string& path) {
    const std::string name(FileNameOf(path));
    const std::filesystem::path file = PathOf(path);
    std::error_code error;
    // A stream opens a folder on some systems and then reads nothing, which would look like an empty file.
    if (!std::filesystem::is_regular_file(file, error)) return FileFault{name, 0, "file not found"};
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) return FileFault{name, 0, "file cannot be read"};
    return text;
}

Loaded<std::string> ReadTextFile(const std::string& path) {
    Loaded<std::string> text = ReadWholeFile(path);
    if (!text) return text;
    if (base::IsUtf16(text.Value()))
        return FileFault{std::string(FileNameOf(path)), 0, "this is UTF-16 text; save it as UTF-8"};
    return std::string(base::WithoutMark(text.Value()));
}

bool WriteInPlace(const std::string& path, std::string_view text, std::ios::openmode mode) {
    std::ofstream stream(PathOf(path), mode | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    return !stream.fail();
}

bool WriteWholeFile(const std::string& path, std::string_view text, std::ios::openmode mode) {
    const std::string draft = path + ".new";
    std::error_code error = std::make_error_code(std::errc::io_error);
    if (WriteInPlace(draft, text, mode)) std::filesystem::rename(PathOf(draft), PathOf(path), error);
    if (!error) return true;
    std::error_code ignored;
    std::filesystem::remove(PathOf(draft), ignored);
    return false;
}

std::filesystem::path PathOf(std::string_view text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string TextOfPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::vector<std::string> CommandWords(int count, const char* const* words) {
    std::vector<std::string> result;

#ifdef _WIN32
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; wide && i < count; ++i)
        result.push_back(TextOfPath(wide[i]));
    LocalFree(wide);
    static_cast<void>(words);
#else
    for (int i = 1; i < count; ++i)
        result.emplace_back(words[i]);
#endif
    return result;
}

} // namespace vesk

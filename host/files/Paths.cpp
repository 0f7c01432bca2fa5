#include "host/files/Paths.h"

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

namespace vesk {

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

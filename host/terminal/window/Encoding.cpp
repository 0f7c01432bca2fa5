#include "host/terminal/window/Encoding.h"

#include "framework/Files.h"

namespace vesk {

std::string ForScreen(std::string_view text) {
    return framework::Narrow(framework::Wide(text, CP_UTF8), CP_ACP);
}

std::string FolderForPlugins(const std::string& folder) {
    const std::wstring wide = framework::Wide(folder, CP_UTF8);
    std::string narrow = framework::Narrow(wide, CP_ACP);
    if (framework::Wide(narrow, CP_ACP) == wide) return narrow;
    std::wstring brief(GetShortPathNameW(wide.c_str(), nullptr, 0), L'\0');
    brief.resize(GetShortPathNameW(wide.c_str(), brief.data(), static_cast<DWORD>(brief.size())));
    return brief.empty() ? narrow : framework::Narrow(brief, CP_ACP);
}

} // namespace vesk

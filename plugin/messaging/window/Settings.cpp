#include "plugin/messaging/Settings.h"

#include <windows.h>

#include <cstdio>

namespace planfold {

namespace {

std::string SettingsPath() {
    std::string path(MAX_PATH, '\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()))) == path.size())
        path.resize(path.size() * 2);
    path.resize(length);
    return path.substr(0, path.rfind('\\')) + "\\Vesk Plugins\\Planfold.ini";
}

bool CanOpen(const std::string& path, const char* how) {
    std::FILE* file = std::fopen(path.c_str(), how);
    if (file) std::fclose(file);
    return file != nullptr;
}

} // namespace

bool ReadWriteSetting(SettingMode mode, const std::string& section, const std::string& key,
                      std::string& value) {
    const std::string path = SettingsPath();
    switch (mode) {
    case SettingMode::read: {
        if (!CanOpen(path, "r+t")) return false;
        char text[4096];
        GetPrivateProfileStringA(section.c_str(), key.c_str(), "Settings not found", text, sizeof text,
                                 path.c_str());
        value = text;
        return true;
    }
    case SettingMode::write:
        return CanOpen(path, "a+")
               && WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), path.c_str()) != 0;
    default:
        return false;
    }
}

} // namespace planfold

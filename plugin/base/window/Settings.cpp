#include "plugin/base/Settings.h"

#include "framework/Files.h"

#include <windows.h>

#include <cstdio>

namespace planfold {

namespace {

std::wstring SettingsPath() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) == path.size())
        path.resize(path.size() * 2);
    path.resize(length);
    return path.substr(0, path.rfind(L'\\')) + L"\\Vesk Plugins\\Planfold.ini";
}

bool CanOpen(const std::wstring& path, const wchar_t* how) {
    std::FILE* file = _wfopen(path.c_str(), how);
    if (file) std::fclose(file);
    return file != nullptr;
}

std::wstring FromAnsi(const std::string& text) {
    return framework::Wide(text, CP_ACP);
}

} // namespace

bool ReadWriteSetting(SettingMode mode, const std::string& section, const std::string& key,
                      std::string& value) {
    const std::wstring path = SettingsPath();
    switch (mode) {
    case SettingMode::read: {
        if (!CanOpen(path, L"r+t")) return false;
        framework::DropByteOrderMark(framework::Narrow(path, CP_UTF8));
        wchar_t text[4096];
        GetPrivateProfileStringW(FromAnsi(section).c_str(), FromAnsi(key).c_str(), L"Settings not found", text,
                                 std::size(text), path.c_str());
        value = framework::Narrow(text, CP_ACP);
        return true;
    }
    case SettingMode::write:
        return CanOpen(path, L"a+")
               && WritePrivateProfileStringW(FromAnsi(section).c_str(), FromAnsi(key).c_str(),
                                             FromAnsi(value).c_str(), path.c_str())
                      != 0;
    default:
        return false;
    }
}

} // namespace planfold

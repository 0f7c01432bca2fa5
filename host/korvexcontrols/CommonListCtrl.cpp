#include "sdk/korvex/CommonListCtrl.h"

#include "framework/Files.h"
#include "framework/Guard.h"
#include "host/korvexcontrols/RecoveryFiles.h"

#include <windows.h>

namespace {

struct RecoveryPaths {
    std::string userSettings;
    std::string dialogPositions;
};

RecoveryPaths& CurrentPaths() {
    static RecoveryPaths paths;
    return paths;
}

const std::string& PathOf(korvex::RecoveryFile file) {
    const RecoveryPaths& paths = CurrentPaths();
    return file == korvex::RecoveryFile::userSettings ? paths.userSettings : paths.dialogPositions;
}

} // namespace

void CCommonListCtrl::SetRecoveryFiles(CString* userSettings, CString* dialogPositions) noexcept {
    framework::Guard([&] {
        const TakenString userSettingsPath(userSettings);
        const TakenString dialogPositionsPath(dialogPositions);
        RecoveryPaths& paths = CurrentPaths();
        paths.userSettings = userSettingsPath.View();
        paths.dialogPositions = dialogPositionsPath.View();
        for (const std::string& path : {paths.userSettings, paths.dialogPositions})
            framework::DropByteOrderMark(framework::Utf8(path));
    });
}

std::string korvex::ReadRecovered(RecoveryFile file, const char* section, const std::string& key) {
    const std::string& path = PathOf(file);
    if (path.empty() || key.empty()) return {};
    char text[4096];
    const DWORD length = GetPrivateProfileStringA(section, key.c_str(), "", text, sizeof text, path.c_str());
    return {text, length};
}

void korvex::WriteRecovered(RecoveryFile file, const char* section, const std::string& key,
                            const std::string& text) {
    const std::string& path = PathOf(file);
    if (!path.empty() && !key.empty())
        WritePrivateProfileStringA(section, key.c_str(), text.c_str(), path.c_str());
}

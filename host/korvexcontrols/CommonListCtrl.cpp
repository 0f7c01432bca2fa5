#include "host/korvexcontrols/CommonListCtrl.h"

#include "framework/Guard.h"

#include <string>

namespace {

struct RecoveryFiles {
    std::string userSettings;
    std::string dialogPositions;
};

RecoveryFiles& CurrentRecoveryFiles() {
    static RecoveryFiles files;
    return files;
}

} // namespace

void CCommonListCtrl::SetRecoveryFiles(CString* userSettings, CString* dialogPositions) noexcept {
    framework::Guard([&] {
        const TakenString userSettingsPath(userSettings);
        const TakenString dialogPositionsPath(dialogPositions);
        RecoveryFiles& files = CurrentRecoveryFiles();
        files.userSettings = userSettingsPath.View();
        files.dialogPositions = dialogPositionsPath.View();
    });
}

// What is remembered from one session to the next: texts by section and key in the files that were named by
// CCommonListCtrl::SetRecoveryFiles. Without a file nothing is kept and nothing found.
#pragma once

#include <string>

namespace korvex {

enum class RecoveryFile { userSettings, dialogPositions };

std::string ReadRecovered(RecoveryFile file, const char* section, const std::string& key);
void WriteRecovered(RecoveryFile file, const char* section, const std::string& key, const std::string& text);

} // namespace korvex

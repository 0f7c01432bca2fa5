// The plug-in's own settings file: "Vesk Plugins\Planfold.ini" in the folder of the host executable.
#pragma once

#include <string>

namespace planfold {

enum class SettingMode : int { read = 0, write = 1 };

// Reading needs a file that can be opened for reading and writing and never makes one; a key that is not
// there reads "Settings not found". Writing makes the file when it is missing. False when the file cannot
// be used; the value is then as it was.
bool ReadWriteSetting(SettingMode mode, const std::string& section, const std::string& key, std::string& value);

} // namespace planfold

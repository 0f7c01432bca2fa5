// The host's texts about files are UTF-8; what is shown and what the plug-ins are given is in the system's code
// page.
#pragma once

#include <string>
#include <string_view>

namespace vesk {

// What the code page lacks becomes its default character.
std::string ForScreen(std::string_view text);

// Names the same folder, which exists: by its short name where the code page lacks a character.
std::string FolderForPlugins(const std::string& folder);

} // namespace vesk

// Text that leaves the list: to the clipboard, or into a file.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace korvex {

void PutOnClipboard(HWND owner, const std::string& text);

// Asks for a file name; none when the user thinks better of it.
std::optional<std::string> AskForCsvName(HWND owner, const std::string& proposed);

// Writes a neighbour and puts it in the file's place, which keeps its old content when anything fails. What
// failed; empty when nothing did.
std::string WriteWhole(const std::string& path, const std::string& text);

} // namespace korvex

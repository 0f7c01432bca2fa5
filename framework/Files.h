// Text that comes from a file, and text that leaves: into a file, or to the clipboard. Names and texts are in
// the system's ANSI code page.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace framework {

void PutOnClipboard(HWND owner, const std::string& text);

// What the system's dialogs for a file name show. `filter` is pairs of a name and a pattern, each ended by "|".
struct FileQuestion {
    const char* filter;
    const char* defaultExtension;
    const char* title = nullptr; // null: the system's
};

// None when the user thinks better of it.
std::optional<std::string> AskForFileToRead(HWND owner, const FileQuestion& question);
// Asks once more before another file is replaced.
std::optional<std::string> AskForFileToWrite(HWND owner, const FileQuestion& question,
                                             const std::string& proposed);

// None when it cannot be opened or read.
std::optional<std::string> ReadWhole(const std::string& path);

// With the system's line ends in place of line feeds.
std::string WithLineEnds(std::string_view text);

// Writes a neighbour and puts it in the file's place, which keeps its old content when anything fails. What
// failed; empty when nothing did.
std::string WriteWhole(const std::string& path, const std::string& text);

} // namespace framework

// Text that comes from a file, and text that leaves: into a file, or to the clipboard. Names of files are in
// UTF-8, texts in the system's ANSI code page.
#pragma once

#include "framework/Handle.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace framework {

inline void CloseFile(HANDLE file) {
    CloseHandle(file);
}
using File = UniqueHandle<HANDLE, CloseFile>;

void PutOnClipboard(HWND owner, const std::string& text);
// None when it holds no text.
std::optional<std::string> TextOfClipboard(HWND owner);

// What the system's dialogs for a file name show. `filter` is pairs of a name and a pattern, each ended by "|".
struct FileQuestion {
    const char* filter;
    const char* defaultExtension;
    const char* title = nullptr; // null: the system's
};

// There is none when the user thinks better of it.
std::optional<std::string> AskForFileToRead(HWND owner, const FileQuestion& question);
// Asks once more before another file is replaced.
std::optional<std::string> AskForFileToWrite(HWND owner, const FileQuestion& question,
                                             const std::string& proposed);

bool FileExists(const std::string& name);
// What failed; empty when nothing did, or there was no such file.
std::string RemoveFile(const std::string& name);
// A file that is there as long as it is held, by one process; null while another holds it, or when it cannot be
// made.
File HoldFile(const std::string& name);

// There is none when it cannot be opened or read.
std::optional<std::string> ReadWhole(const std::string& name);

// A settings file needs this: the system takes the mark for part of its first line.
void DropByteOrderMark(const std::string& name);

// A file that several processes may append to at the same time; null when it cannot be opened or made.
File OpenToAppend(const std::string& name);
// Puts the lines at its end, behind the heading when it is new, and behind a line end when its last line has
// none. False when something failed; so many of the lines are there whole then. What is flushed is on the disk.
bool AppendLines(HANDLE file, std::string_view heading, std::string_view tornEnd, std::string_view lines,
                 bool flush, std::size_t& whole);
// And those above it.
void MakeFolders(const std::string& name);

// Puts the system's line ends in place of line feeds.
std::string WithLineEnds(std::string_view text);

// Writes a neighbour and puts it in the file's place, which keeps its old content when anything fails. What
// failed; empty when nothing did.
std::string WriteWhole(const std::string& name, const std::string& text);

// Text of 16-bit characters, as the system's names are, and of a code page.
std::wstring Wide(std::string_view text, UINT codePage);
// What the code page lacks becomes its default character.
std::string Narrow(std::wstring_view wide, UINT codePage);

// `ansi` is in the system's ANSI code page.
std::string Utf8(std::string_view ansi);

} // namespace framework

#include "framework/Files.h"

#include "base/Text.h"

#include <algorithm>
#include <commdlg.h>
#include <cstring>

namespace framework {

namespace {

std::string SystemText(DWORD error) {
    char text[512];
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text, sizeof text, nullptr);
    std::string message(text, length);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
        message.pop_back();
    return message.empty() ? "Error " + std::to_string(error) : message;
}

// What could not be done with a file.
std::string FaultOf(const std::string& name, const char* done, DWORD error) {
    return "\"" + Narrow(Wide(name, CP_UTF8), CP_ACP) + "\" could not be " + done + ": " + SystemText(error);
}

// The system wants another form of a long name.
std::wstring SystemPath(std::string_view path) {
    constexpr std::size_t leastLong = MAX_PATH - 16; // with the neighbour's ending
    const std::wstring wide = Wide(path, CP_UTF8);
    if (wide.size() < leastLong || wide.starts_with(L"\\\\?\\")) return wide;
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

// A file name has at most 255 characters.
std::wstring NeighbourOf(std::wstring path) {
    constexpr std::wstring_view ending = L".new";
    constexpr std::size_t mostOfName = 255 - ending.size();
    const std::size_t name = path.rfind(L'\\') + 1;
    path.resize(std::min(path.size(), name + mostOfName));
    return path.append(ending);
}

// How much of it was written: less than all after a failure.
std::size_t Write(HANDLE file, std::string_view text) {
    constexpr std::size_t piece = 1 << 24;
    std::size_t at = 0;
    for (DWORD written = 1; written > 0 && at < text.size(); at += written) {
        const auto size = static_cast<DWORD>(std::min(piece, text.size() - at));
        if (!WriteFile(file, text.data() + at, size, &written, nullptr)) break;
    }
    return at;
}

std::optional<std::string> Ask(decltype(GetOpenFileNameW)* dialog, HWND owner, const FileQuestion& question,
                               const std::string& proposed, DWORD flags) {
    constexpr std::size_t longest = 32768;
    std::wstring path = Wide(proposed, CP_UTF8);
    path.resize(longest);
    std::wstring filter = Wide(question.filter, CP_ACP);
    std::ranges::replace(filter, L'|', L'\0');
    const std::wstring title = Wide(question.title ? question.title : "", CP_ACP);
    const std::wstring extension = Wide(question.defaultExtension, CP_ACP);
    OPENFILENAMEW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = owner;
    ask.lpstrFilter = filter.c_str();
    ask.lpstrFile = path.data();
    ask.nMaxFile = static_cast<DWORD>(path.size());
    ask.lpstrTitle = question.title ? title.c_str() : nullptr;
    ask.lpstrDefExt = extension.c_str();
    ask.Flags = flags | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!dialog(&ask)) return std::nullopt;
    return Narrow(path.c_str(), CP_UTF8);
}

} // namespace

void PutOnClipboard(HWND owner, const std::string& text) {
    if (!OpenClipboard(owner)) return;
    EmptyClipboard();
    if (HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1)) {
        if (void* to = GlobalLock(memory)) {
            std::memcpy(to, text.c_str(), text.size() + 1);
            GlobalUnlock(memory);
        }
        // The clipboard takes the memory over, unless it refuses.
        if (!SetClipboardData(CF_TEXT, memory)) GlobalFree(memory);
    }
    CloseClipboard();
}

std::optional<std::string> TextOfClipboard(HWND owner) {
    if (!OpenClipboard(owner)) return std::nullopt;
    std::optional<std::string> text;
    if (const HANDLE memory = GetClipboardData(CF_TEXT))
        if (const auto* from = static_cast<const char*>(GlobalLock(memory))) {
            // Another program's text may lack its zero.
            text.emplace(from, strnlen(from, GlobalSize(memory)));
            GlobalUnlock(memory);
        }
    CloseClipboard();
    return text;
}

std::optional<std::string> AskForFileToRead(HWND owner, const FileQuestion& question) {
    return Ask(GetOpenFileNameW, owner, question, {}, OFN_FILEMUSTEXIST);
}

std::optional<std::string> AskForFileToWrite(HWND owner, const FileQuestion& question,
                                             const std::string& proposed) {
    return Ask(GetSaveFileNameW, owner, question, proposed, OFN_OVERWRITEPROMPT);
}

bool FileExists(const std::string& name) {
    return GetFileAttributesW(SystemPath(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string RemoveFile(const std::string& name) {
    if (DeleteFileW(SystemPath(name).c_str())) return {};
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND ? std::string() : FaultOf(name, "removed", error);
}

File HoldFile(const std::string& name) {
    const HANDLE opened = CreateFileW(SystemPath(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return File(opened == INVALID_HANDLE_VALUE ? nullptr : opened);
}

std::optional<std::string> ReadWhole(const std::string& name) {
    constexpr DWORD piece = 1 << 24;
    const HANDLE opened = CreateFileW(SystemPath(name).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    const File file(opened);
    std::string text;
    for (DWORD read = piece; read > 0;) {
        const std::size_t at = text.size();
        text.resize(at + piece);
        if (!ReadFile(file.Get(), text.data() + at, piece, &read, nullptr)) return std::nullopt;
        text.resize(at + read);
    }
    return text;
}

void DropByteOrderMark(const std::string& name) {
    const auto text = ReadWhole(name);
    const std::string_view rest = text ? base::WithoutMark(*text) : std::string_view();
    if (text && rest.size() < text->size()) WriteWhole(name, std::string(rest));
}

// What is opened for appending alone is written at the end, wherever that is by then.
File OpenToAppend(const std::string& name) {
    const HANDLE opened = CreateFileW(SystemPath(name).c_str(), FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, 0, nullptr);
    return File(opened == INVALID_HANDLE_VALUE ? nullptr : opened);
}

bool AppendLines(HANDLE file, std::string_view heading, std::string_view tornEnd, std::string_view lines,
                 bool flush, std::size_t& whole) {
    whole = 0;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file, &size)) return false;
    char last = '\n';
    DWORD read = 0;
    const bool isNew = size.QuadPart == 0;
    if (!isNew
        && !(SetFilePointerEx(file, {.QuadPart = -1}, nullptr, FILE_END)
             && ReadFile(file, &last, 1, &read, nullptr)))
        return false;
    std::string text(isNew ? heading : last == '\n' ? std::string_view() : tornEnd);
    const std::size_t start = text.size();
    const std::size_t written = Write(file, text.append(lines));
    const std::string_view there = lines.substr(0, std::max(written, start) - start);
    whole = static_cast<std::size_t>(std::ranges::count(there, '\n'));
    return written == text.size() && (!flush || FlushFileBuffers(file));
}

void MakeFolders(const std::string& name) {
    for (std::size_t end = name.find('\\', name.find('\\') + 1); end != name.npos;
         end = name.find('\\', end + 1))
        CreateDirectoryW(SystemPath(name.substr(0, end)).c_str(), nullptr);
    CreateDirectoryW(SystemPath(name).c_str(), nullptr);
}

std::string WithLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 64);
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

std::string WriteWhole(const std::string& name, const std::string& text) {
    const std::wstring path = SystemPath(name);
    const std::wstring neighbour = NeighbourOf(path);
    const auto failed = [&](DWORD error) {
        DeleteFileW(neighbour.c_str());
        return FaultOf(name, "written", error);
    };
    // Not every system refuses to replace a file that must not be written.
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
        return failed(ERROR_ACCESS_DENIED);
    File file;
    const HANDLE opened = CreateFileW(neighbour.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return failed(GetLastError());
    file.Reset(opened);
    if (Write(file.Get(), text) < text.size() || !FlushFileBuffers(file.Get())) {
        const DWORD error = GetLastError();
        file.Reset();
        return failed(error);
    }
    file.Reset();
    if (!MoveFileExW(neighbour.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return failed(GetLastError());
    return {};
}

std::wstring Wide(std::string_view text, UINT codePage) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Narrow(std::wstring_view wide, UINT codePage) {
    const int length = static_cast<int>(wide.size());
    const auto convert = [&](char* to, std::size_t most) {
        return static_cast<std::size_t>(WideCharToMultiByte(codePage, 0, wide.data(), length, to,
                                                            static_cast<int>(most), nullptr, nullptr));
    };
    std::string text(convert(nullptr, 0), '\0');
    convert(text.data(), text.size());
    return text;
}

std::string Utf8(std::string_view ansi) {
    return Narrow(Wide(ansi, CP_ACP), CP_UTF8);
}

} // namespace framework

#include "framework/Files.h"

#include "framework/Handle.h"

#include <commdlg.h>

#include <algorithm>
#include <cstring>

namespace framework {
namespace {

void CloseFile(HANDLE file) {
    CloseHandle(file);
}
using File = UniqueHandle<HANDLE, CloseFile>;

std::string SystemText(DWORD error) {
    char text[512];
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, text, sizeof text, nullptr);
    std::string message(text, length);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
        message.pop_back();
    return message.empty() ? "Error " + std::to_string(error) : message;
}

bool WriteAll(HANDLE file, const std::string& text) {
    constexpr std::size_t piece = 1 << 24;
    for (std::size_t at = 0; at < text.size();) {
        const auto size = static_cast<DWORD>(std::min(piece, text.size() - at));
        DWORD written = 0;
        if (!WriteFile(file, text.data() + at, size, &written, nullptr) || written == 0) return false;
        at += written;
    }
    return FlushFileBuffers(file) != 0;
}

std::optional<std::string> Ask(decltype(GetOpenFileNameA)* dialog, HWND owner, const FileQuestion& question,
                               const std::string& proposed, DWORD flags) {
    char path[MAX_PATH] = "";
    lstrcpynA(path, proposed.c_str(), MAX_PATH);
    std::string filter(question.filter);
    std::ranges::replace(filter, '|', '\0');
    OPENFILENAMEA ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = owner;
    ask.lpstrFilter = filter.c_str();
    ask.lpstrFile = path;
    ask.nMaxFile = MAX_PATH;
    ask.lpstrTitle = question.title;
    ask.lpstrDefExt = question.defaultExtension;
    ask.Flags = flags | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!dialog(&ask)) return std::nullopt;
    return path;
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

std::optional<std::string> AskForFileToRead(HWND owner, const FileQuestion& question) {
    return Ask(GetOpenFileNameA, owner, question, {}, OFN_FILEMUSTEXIST);
}

std::optional<std::string> AskForFileToWrite(HWND owner, const FileQuestion& question,
                                             const std::string& proposed) {
    return Ask(GetSaveFileNameA, owner, question, proposed, OFN_OVERWRITEPROMPT);
}

std::optional<std::string> ReadWhole(const std::string& path) {
    constexpr DWORD piece = 1 << 24;
    const HANDLE opened = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
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

std::string WithLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 64);
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

std::string WriteWhole(const std::string& path, const std::string& text) {
    const std::string neighbour = path + ".new";
    const auto failed = [&](DWORD error) {
        DeleteFileA(neighbour.c_str());
        return "\"" + path + "\" could not be written: " + SystemText(error);
    };
    // Not every system refuses to replace a file that must not be written.
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
        return failed(ERROR_ACCESS_DENIED);
    File file;
    const HANDLE opened = CreateFileA(neighbour.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return failed(GetLastError());
    file.Reset(opened);
    if (!WriteAll(file.Get(), text)) {
        const DWORD error = GetLastError();
        file.Reset();
        return failed(error);
    }
    file.Reset();
    if (!MoveFileExA(neighbour.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return failed(GetLastError());
    return {};
}

} // namespace framework

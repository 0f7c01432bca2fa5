// Files as a whole, and what is wrong with one, and where. Paths are UTF-8.
#pragma once

#include <cstddef>
#include <filesystem>
#include <ios>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vesk {

struct FileFault {
    std::string file;
    std::size_t line = 0; // from 1; 0 when the fault is the whole file's
    std::string what;

    // "scrips.csv:12: 8 fields expected, 7 found"
    std::string Text() const {
        return line ? file + ':' + std::to_string(line) + ": " + what : file + ": " + what;
    }
};

// A loaded value or the fault that kept it from being loaded.
template <class T>
class Loaded {
public:
    Loaded(T value) : m_result(std::move(value)) {}
    Loaded(FileFault fault) : m_result(std::move(fault)) {}

    explicit operator bool() const { return std::holds_alternative<T>(m_result); }
    T& Value() { return std::get<T>(m_result); }
    const T& Value() const { return std::get<T>(m_result); }
    const FileFault& Fault() const { return std::get<FileFault>(m_result); }

private:
    std::variant<T, FileFault> m_result;
};

// The whole file as it is. Fault: missing, a folder, or unreadable.
Loaded<std::string> ReadWholeFile(const std::string& path);
// A text comes without its byte order mark. UTF-16 is a fault.
Loaded<std::string> ReadTextFile(const std::string& path);

// Replaces the file as a whole: a reader sees the old text or the new one. False when it cannot, and then
// nothing is left behind. Without std::ios::binary line feeds become the platform's line ends.
bool WriteWholeFile(const std::string& path, std::string_view text, std::ios::openmode mode = std::ios::binary);
// Serves a device or a pipe, which cannot be replaced. False when it cannot.
bool WriteInPlace(const std::string& path, std::string_view text, std::ios::openmode mode);

// The last part of a path, with either separator: faults name the file, not where it lies.
std::string_view FileNameOf(std::string_view path);

// Paths and the words of a command line are UTF-8 everywhere in the host, so that they may name any file.
// The form that the system wants.
std::filesystem::path PathOf(std::string_view text);
std::string TextOfPath(const std::filesystem::path& path);

// The program's name is left out. The system is asked where what `main` is given is in a code page.
std::vector<std::string> CommandWords(int count, const char* const* words);

} // namespace vesk

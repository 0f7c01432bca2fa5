// An append-only file whose writes are on the disk when they return.
//
// Thread: one at a time. The file is locked against other programs that open it in this way.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace vesk {

class DurableFile {
public:
    // Opens or creates. Null with the system's reason in `error`.
    static std::unique_ptr<DurableFile> Open(const std::filesystem::path& path, std::string& error);
    DurableFile(const DurableFile&) = delete;
    DurableFile& operator=(const DurableFile&) = delete;
    ~DurableFile();

    bool ReadAll(std::string& text, std::string& error) { return ReadFrom(0, text, error); }
    // To the end.
    bool ReadFrom(std::uint64_t offset, std::string& text, std::string& error);
    // Writes at the end and flushes to the disk. After a failure part of `bytes` may stand in the file.
    bool Append(std::string_view bytes, std::string& error);
    // Puts the bytes in place of as many at the start. Nothing is flushed, and a failure is not told.
    void Overwrite(std::string_view bytes);
    // Puts one file in another's place, which is the old or the new one at any time. Neither is open.
    static bool Replace(const std::filesystem::path& from, const std::filesystem::path& to, std::string& error);
    // Until then a crash may undo the replacement. The file is not open.
    static bool FlushName(const std::filesystem::path& path, std::string& error);
    bool CutTo(std::uint64_t size, std::string& error);

private:
    explicit DurableFile(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

} // namespace vesk

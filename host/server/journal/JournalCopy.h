// A new journal while it stands beside the one whose place it is to take, which goes on meanwhile: what that
// one takes is put behind what the new one was made of.
//
// Thread: the journal's. Until it has moved, its end removes the file.
#pragma once

#include "host/server/journal/DurableFile.h"
#include "host/server/journal/JournalText.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace vesk {

class JournalCopy {
public:
    // Its records are numbered behind those of the old one.
    JournalCopy(std::filesystem::path path, std::uint64_t number)
        : m_path(std::move(path)), m_chain{.number = number} {}
    JournalCopy(const JournalCopy&) = delete;
    JournalCopy& operator=(const JournalCopy&) = delete;
    ~JournalCopy();

    bool Open(std::string& error);
    // Writes when much has come together.
    bool Add(std::string_view content, std::string& error);
    // Records of the old one, each with a line feed. They wait until what it is made of is there.
    void AddBehind(std::string_view contents) { m_behind += contents; }
    // Takes some of them. Not `isDone` while there are more.
    bool TakeBehind(bool& isDone, std::string& error);
    // All that was added is on the disk, and read back.
    bool Flush(std::string& error);
    bool MoveTo(const std::filesystem::path& path, std::string& error);

    std::uint64_t Size() const { return m_size; }
    const JournalChain& Chain() const { return m_chain; }

private:
    std::filesystem::path m_path;
    std::unique_ptr<DurableFile> m_file;
    JournalChain m_chain;
    std::string m_lines; // not yet written
    std::string m_behind;
    std::uint64_t m_size = 0;
};

} // namespace vesk

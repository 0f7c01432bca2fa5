// The server's journal: every accepted change as one line of text, on the disk before it is answered.
//
// A last line that a crash tore was never answered: it is put into a file beside, ".torn". Any other text that
// is not what was written is damage, and nothing is opened; so is an end before the record that the file
// ".head" names, in which stands how far the journal was.
//
// Thread: one at a time. Owner: the journal holds its file open and locked against a second server, and so is a
// file beside it, ".lock", because the journal's own is let go for the moment in which it is replaced.
#pragma once

#include "host/server/journal/JournalText.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class DurableFile;
struct JournalOpening;

// Records that are put on the disk together, as one text: many small blocks of memory would outlive it.
class JournalBatch {
public:
    void Add(std::string_view content);

private:
    friend class Journal;
    friend class JournalCopy;
    std::string m_contents; // each with a line feed
    bool m_isWritable = true;
};

class Journal {
public:
    // Replays the file, or creates it. After damage or an unreadable file `journal` is null.
    static JournalOpening Open(const std::filesystem::path& path);

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal();

    // True once the record is on the disk. After a failure, told in `error`, the journal holds exactly what
    // it held before; when even that cannot be restored, every later append fails.
    [[nodiscard]] bool Append(std::string_view content, std::string& error);
    // The same for many records, of which none counts before all are on the disk.
    [[nodiscard]] bool Append(const JournalBatch& batch, std::string& error);

    // Puts a journal of only those records in its place that `write` hands to the sink. It is written beside,
    // as
    // ".new", and read back before; a crash leaves the old or the new one whole. After a failure, told in
    // `error`, the old one goes on, or every later append fails.
    using Sink = std::function<void(std::string_view content)>;
    [[nodiscard]] bool Replace(const std::function<void(const Sink&)>& write, std::string& error);

private:
    struct Files {
        std::unique_ptr<DurableFile> lock, journal, head;
    };
    Journal(std::filesystem::path path, Files files, const JournalText& judged);
    static bool TakeAway(const std::filesystem::path& path, DurableFile& journal, std::string_view text,
                         std::uint64_t end, std::string& told);

    std::filesystem::path m_path;
    Files m_files;
    JournalChain m_chain;
    std::uint64_t m_end; // bytes of whole records
    bool m_broken = false;
};

struct JournalOpening {
    std::unique_ptr<Journal> journal;
    std::unique_ptr<std::string> text;     // what the records point into
    std::vector<std::string_view> records; // contents in order, to be replayed
    std::string warning;                   // a torn record that was put aside, with path and offset
    std::string error;                     // without a journal: path, and record number and offset of damage
};

} // namespace vesk

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
class JournalCopy;
struct JournalOpening;

// Records that are put on the disk together, as one text: many small blocks of memory would outlive it.
class JournalBatch {
public:
    void Add(std::string_view content);
    std::size_t Size() const { return m_size; }

private:
    friend class Journal;
    std::string m_contents; // each with a line feed
    std::size_t m_size = 0;
    bool m_isWritable = true;
};

class Journal {
public:
    // Replays the file, or creates it. After damage or an unreadable file `journal` is null.
    static JournalOpening Open(const std::filesystem::path& path);

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal();

    // Records that wait for the next flush. They are refused when they could not be written.
    [[nodiscard]] bool Add(const JournalBatch& batch, std::string& error);
    std::size_t Waiting() const { return m_waiting.size(); } // bytes
    // True once all that waits is on the disk. After a failure, told in `error`, none of it is, and the journal
    // holds exactly what it held before; when even that cannot be restored, every later one fails.
    [[nodiscard]] bool Flush(std::string& error);
    // Both.
    [[nodiscard]] bool Append(std::string_view content, std::string& error);
    [[nodiscard]] bool Append(const JournalBatch& batch, std::string& error);
    // What is on the disk, for another replay; the records point into `text`. False when that is not what was
    // written.
    [[nodiscard]] bool ReadBack(std::string& text, std::vector<std::string_view>& records, std::string& error);
    std::uint64_t Size() const { return m_end; }

    // Puts a journal of other records in its place, step by step. It is written beside, as ".new", and read
    // back before; a crash leaves the old or the new one whole. What is appended meanwhile comes behind what is
    // copied. After a failure, told in `error`, the old one goes on, or every later append fails.
    [[nodiscard]] bool BeginCopy(std::string& error);
    [[nodiscard]] bool Copy(std::string_view content, std::string& error);
    // Nothing waits for a flush. It is called until it `isDone`.
    [[nodiscard]] bool EndCopy(bool& isDone, std::string& error);
    void DropCopy();
    using Sink = std::function<void(std::string_view content)>;
    // All at once, of what `write` hands to the sink.
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
    JournalChain m_chain, m_next; // behind what is on the disk, and behind what waits
    std::string m_waiting;        // lines
    std::string m_contents;       // of those, for the copy
    std::unique_ptr<JournalCopy> m_copy;
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

// A journal that is written anew: beside the old one, flushed, read back, and then put in its place.

#include "host/server/journal/DurableFile.h"
#include "host/server/journal/Journal.h"

namespace vesk {

// The new journal while it stands beside the old one.
class JournalCopy {
public:
    explicit JournalCopy(std::filesystem::path path) : m_path(std::move(path)) {}
    JournalCopy(const JournalCopy&) = delete;
    JournalCopy& operator=(const JournalCopy&) = delete;
    // Removes it, unless it has moved.
    ~JournalCopy() {
        m_file.reset();
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }

    bool Write(const std::function<void(const Journal::Sink&)>& write, std::string& error) {
        m_file = DurableFile::Open(m_path, error);
        // What a crash left may stand there.
        m_isWell = m_file && m_file->CutTo(0, error);
        write([&](std::string_view content) {
            constexpr std::size_t piece = std::size_t{4} << 20;
            m_batch.Add(content);
            if (m_batch.m_lines.size() >= piece) Flush(error);
        });
        Flush(error);
        return m_isWell;
    }
    bool Check(std::string& error) {
        std::string text;
        if (!m_file->ReadAll(text, error)) return false;
        const JournalText judged = ReadJournalText(text);
        if (judged.end == m_size && text.size() == m_size) return true;
        error = "is not on the disk as it was written";
        return false;
    }
    bool MoveTo(const std::filesystem::path& path, std::string& error) {
        m_file.reset();
        return DurableFile::Replace(m_path, path, error);
    }
    std::uint64_t Size() const { return m_size; }

private:
    void Flush(std::string& error) {
        m_isWell = m_isWell && m_batch.m_isWritable && m_file->Append(m_batch.m_lines, error);
        m_size += m_batch.m_lines.size();
        m_batch = {};
    }

    std::filesystem::path m_path;
    std::unique_ptr<DurableFile> m_file;
    JournalBatch m_batch;
    std::uint64_t m_size = 0;
    bool m_isWell = false;
};

bool Journal::Replace(const std::function<void(const Sink&)>& write, std::string& error) {
    std::filesystem::path beside = m_path;
    JournalCopy copy(beside += ".new");
    if (m_broken || !copy.Write(write, error) || !copy.Check(error)) return false;
    // No system replaces a file that is open; the lock beside keeps others out meanwhile.
    m_file.reset();
    const bool isReplaced = copy.MoveTo(m_path, error);
    if (isReplaced) m_end = copy.Size();
    std::string reason;
    // What is appended to a new one whose name is not on the disk would be lost with it.
    m_broken = isReplaced && !DurableFile::FlushName(m_path, reason);
    m_file = DurableFile::Open(m_path, reason);
    m_broken = m_broken || !m_file;
    if (m_broken) error = reason;
    return isReplaced && !m_broken;
}

} // namespace vesk

// A journal that is written anew: beside the old one, flushed, read back, and then put in its place.

#include "host/server/journal/DurableFile.h"
#include "host/server/journal/Journal.h"

namespace vesk {

// The new journal while it stands beside the old one.
class JournalCopy {
public:
    // Its records are numbered behind those of the old one.
    JournalCopy(std::filesystem::path path, std::uint64_t number)
        : m_path(std::move(path)), m_chain{.number = number} {}
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
            m_isWell = m_isWell && content.find('\n') == content.npos;
            m_chain.AppendLine(m_lines, content);
            if (m_lines.size() >= piece) Flush(error);
        });
        Flush(error);
        return m_isWell;
    }
    bool Check(std::string& error) {
        std::string text;
        if (!m_file->ReadAll(text, error)) return false;
        const JournalText judged = ReadJournalText(text);
        if (judged.end == m_size && text.size() == m_size && judged.chain == m_chain) return true;
        error = "is not on the disk as it was written";
        return false;
    }
    bool MoveTo(const std::filesystem::path& path, std::string& error) {
        m_file.reset();
        return DurableFile::Replace(m_path, path, error);
    }
    std::uint64_t Size() const { return m_size; }
    const JournalChain& Chain() const { return m_chain; }

private:
    void Flush(std::string& error) {
        m_isWell = m_isWell && m_file->Append(m_lines, error);
        m_size += m_lines.size();
        m_lines.clear();
    }

    std::filesystem::path m_path;
    std::unique_ptr<DurableFile> m_file;
    JournalChain m_chain;
    std::string m_lines; // not yet written
    std::uint64_t m_size = 0;
    bool m_isWell = false;
};

bool Journal::Replace(const std::function<void(const Sink&)>& write, std::string& error) {
    std::filesystem::path beside = m_path;
    JournalCopy copy(beside += ".new", m_chain.number);
    if (m_broken || !copy.Write(write, error) || !copy.Check(error)) return false;
    // No system replaces a file that is open; the lock beside keeps others out meanwhile.
    m_files.journal.reset();
    const bool isReplaced = copy.MoveTo(m_path, error);
    if (isReplaced) {
        m_end = copy.Size();
        m_chain = copy.Chain();
    }
    std::string reason;
    // What is appended to a new one whose name is not on the disk would be lost with it.
    m_broken = isReplaced && !DurableFile::FlushName(m_path, reason);
    m_files.journal = DurableFile::Open(m_path, reason);
    m_broken = m_broken || !m_files.journal;
    // Only now: an older one says less, and nothing wrong.
    if (isReplaced && !m_broken) m_files.head->Overwrite(HeadOf(m_chain));
    if (m_broken) error = reason;
    return isReplaced && !m_broken;
}

} // namespace vesk

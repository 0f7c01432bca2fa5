#include "host/server/journal/JournalCopy.h"

namespace vesk {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20; // what else there is to do waits for its flush

} // namespace

JournalCopy::~JournalCopy() {
    m_file.reset();
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

bool JournalCopy::Open(std::string& error) {
    m_file = DurableFile::Open(m_path, error);
    // What a crash left may stand there.
    return m_file && m_file->CutTo(0, error);
}

bool JournalCopy::Add(std::string_view content, std::string& error) {
    if (content.find('\n') != content.npos) {
        error = "a record is one line";
        return false;
    }
    m_chain.AppendLine(m_lines, content);
    return m_lines.size() < kPiece || Flush(error);
}

bool JournalCopy::TakeBehind(bool& isDone, std::string& error) {
    std::string_view left = m_behind;
    for (const std::size_t end = left.size() - std::min(left.size(), kPiece); left.size() > end;) {
        const std::size_t length = left.find('\n');
        if (!Add(left.substr(0, length), error)) return false;
        left.remove_prefix(length + 1);
    }
    m_behind.erase(0, m_behind.size() - left.size());
    isDone = m_behind.empty();
    return Flush(error);
}

bool JournalCopy::Flush(std::string& error) {
    std::string written;
    if (!m_file->Append(m_lines, error) || !m_file->ReadFrom(m_size, written, error)) return false;
    if (written != m_lines) {
        error = "is not on the disk as it was written";
        return false;
    }
    m_size += m_lines.size();
    m_lines.clear();
    return true;
}

bool JournalCopy::MoveTo(const std::filesystem::path& path, std::string& error) {
    m_file.reset();
    return DurableFile::Replace(m_path, path, error);
}

} // namespace vesk

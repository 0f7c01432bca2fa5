// A journal that is written anew: beside the old one, flushed, read back, and then put in its place.

#include "host/server/journal/DurableFile.h"
#include "host/server/journal/Journal.h"
#include "host/server/journal/JournalCopy.h"

namespace vesk {

bool Journal::BeginCopy(std::string& error) {
    std::filesystem::path beside = m_path;
    m_copy = std::make_unique<JournalCopy>(beside += ".new", m_chain.number);
    if (m_broken) error = "an earlier failure left the journal unusable";
    if (!m_broken && m_copy->Open(error)) return true;
    m_copy.reset();
    return false;
}

bool Journal::Copy(std::string_view content, std::string& error) {
    if (m_copy && m_copy->Add(content, error)) return true;
    m_copy.reset();
    return false;
}

bool Journal::EndCopy(bool& isDone, std::string& error) {
    if (!m_copy || !m_copy->TakeBehind(isDone, error)) {
        m_copy.reset();
        return false;
    }
    if (!isDone) return true;
    const std::unique_ptr<JournalCopy> copy = std::move(m_copy);
    // No system replaces a file that is open; the lock beside keeps others out meanwhile.
    m_files.journal.reset();
    const bool isReplaced = copy->MoveTo(m_path, error);
    if (isReplaced) {
        m_end = copy->Size();
        m_chain = m_next = copy->Chain();
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

void Journal::DropCopy() {
    m_copy.reset();
}

bool Journal::Replace(const std::function<void(const Sink&)>& write, std::string& error) {
    bool isWell = BeginCopy(error);
    write([&](std::string_view content) { isWell = isWell && Copy(content, error); });
    for (bool isDone = false; isWell && !isDone;)
        isWell = EndCopy(isDone, error);
    return isWell;
}

} // namespace vesk

#include "host/server/journal/Journal.h"

#include "host/files/Files.h"
#include "host/server/journal/DurableFile.h"
#include "host/server/journal/JournalCopy.h"

#include <algorithm>
#include <utility>

namespace vesk {
namespace {

std::filesystem::path Beside(std::filesystem::path journal, const char* ending) {
    return journal += ending;
}

} // namespace

Journal::Journal(std::filesystem::path path, Files files, const JournalText& judged)
    : m_path(std::move(path)), m_files(std::move(files)), m_chain(judged.chain), m_next(judged.chain),
      m_end(judged.end) {}

Journal::~Journal() {
    m_copy.reset();
    const std::filesystem::path lock = Beside(m_path, ".lock");
    m_files.journal.reset();
    // Where an open file can be removed, it must go while it is held; elsewhere nobody else can have it open.
    std::error_code fault;
    const bool isRemoved = std::filesystem::remove(lock, fault);
    m_files.lock.reset();
    if (!isRemoved) std::filesystem::remove(lock, fault);
}

JournalOpening Journal::Open(const std::filesystem::path& path) {
    JournalOpening opening;
    const std::string name = "journal " + TextOfPath(path) + " ";
    std::string reason, head;
    Files files;
    files.lock = DurableFile::Open(Beside(path, ".lock"), reason);
    if (files.lock) files.journal = DurableFile::Open(path, reason);
    if (files.journal) files.head = DurableFile::Open(Beside(path, ".head"), reason);
    auto text = std::make_unique<std::string>();
    if (!files.head || !files.journal->ReadAll(*text, reason) || !files.head->ReadAll(head, reason)) {
        opening.error = name + reason;
        return opening;
    }
    JournalText judged = ReadJournalText(*text);
    if (!judged.damage.empty()) {
        opening.error = name + "is damaged: " + judged.damage;
        return opening;
    }
    if (const std::string missing = judged.isOld ? "" : MissingBy(head, judged); !missing.empty()) {
        opening.error = name + missing + "; what there is is taken once " + TextOfPath(Beside(path, ".head"))
                        + " is removed";
        return opening;
    }
    if (judged.isTorn && !TakeAway(path, *files.journal, *text, judged.end, opening.warning)) {
        opening.error = name + std::exchange(opening.warning, {});
        return opening;
    }
    opening.text = std::move(text);
    opening.records = std::move(judged.records);
    opening.journal.reset(new Journal(path, std::move(files), judged));
    if (judged.isOld
        && !opening.journal->Replace([&](const Sink& sink) { std::ranges::for_each(opening.records, sink); },
                                     reason)) {
        opening.error = name + "cannot be taken over: " + reason;
        opening.journal.reset();
    }
    return opening;
}

// What a crash tore is kept, behind what earlier ones did. `told` is what there is to say; false when it stays.
bool Journal::TakeAway(const std::filesystem::path& path, DurableFile& journal, std::string_view text,
                       std::uint64_t end, std::string& told) {
    const std::filesystem::path kept = Beside(path, ".torn");
    const auto file = DurableFile::Open(kept, told);
    if (!file || !file->Append(std::string(text.substr(end)) + "\n", told) || !journal.CutTo(end, told)) {
        told = "ends in a torn record and " + told;
        return false;
    }
    told = "journal " + TextOfPath(path) + ": a torn last record of " + std::to_string(text.size() - end)
           + " bytes at offset " + std::to_string(end) + " is in " + TextOfPath(kept);
    return true;
}

void JournalBatch::Add(std::string_view content) {
    m_isWritable = m_isWritable && content.find('\n') == content.npos;
    m_contents.append(content).push_back('\n');
    ++m_size;
}

bool Journal::Append(std::string_view content, std::string& error) {
    JournalBatch one;
    one.Add(content);
    return Append(one, error);
}

bool Journal::Append(const JournalBatch& batch, std::string& error) {
    return Add(batch, error) && Flush(error);
}

bool Journal::Add(const JournalBatch& batch, std::string& error) {
    if (m_broken) {
        error = "an earlier failure left the journal unusable";
        return false;
    }
    if (!batch.m_isWritable) {
        error = "a record is one line";
        return false;
    }
    for (std::string_view left = batch.m_contents; !left.empty(); left.remove_prefix(left.find('\n') + 1))
        m_next.AppendLine(m_waiting, left.substr(0, left.find('\n')));
    if (m_copy) m_contents += batch.m_contents;
    return true;
}

bool Journal::Flush(std::string& error) {
    const std::string lines = std::exchange(m_waiting, {}), contents = std::exchange(m_contents, {});
    if (lines.empty()) return true;
    if (!m_files.journal->Append(lines, error)) {
        // What was written of the records must go, or the next one would follow on their line.
        std::string cutError;
        m_broken = !m_files.journal->CutTo(m_end, cutError);
        m_next = m_chain;
        return false;
    }
    m_end += lines.size();
    m_chain = m_next;
    if (m_copy) m_copy->AddBehind(contents);
    m_files.head->Overwrite(HeadOf(m_chain));
    return true;
}

bool Journal::ReadBack(std::string& text, std::vector<std::string_view>& records, std::string& error) {
    if (m_broken || !m_files.journal->ReadAll(text, error)) return false;
    JournalText judged = ReadJournalText(text);
    records = std::move(judged.records);
    if (judged.end == m_end && judged.chain == m_chain) return true;
    error = "is not on the disk as it was written";
    return false;
}

} // namespace vesk

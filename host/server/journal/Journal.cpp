#include "host/server/journal/Journal.h"

#include "host/connectvesk/Wire.h"
#include "host/files/Files.h"
#include "host/server/journal/DurableFile.h"

#include <array>

namespace vesk {
namespace {

constexpr std::string_view kVersion = "V1 ";
constexpr std::size_t kChecksumDigits = 8;
constexpr std::size_t kContentStart = kVersion.size() + kChecksumDigits + 1;

// Row n tells what a byte does to the checksum when n more bytes follow it.
constexpr std::size_t kCrcStep = 8;
using CrcRow = std::array<std::uint32_t, 256>;
constexpr std::array<CrcRow, kCrcStep> kCrcTable = [] {
    std::array<CrcRow, kCrcStep> table{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ ((value & 1) ? 0xEDB88320u : 0u);
        table[0][byte] = value;
    }
    for (std::size_t row = 1; row < kCrcStep; ++row)
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t before = table[row - 1][byte];
            table[row][byte] = (before >> 8) ^ table[0][before & 0xFFu];
        }
    return table;
}();

std::string HexDigits(std::uint32_t number) {
    std::string digits(kChecksumDigits, '0');
    for (std::size_t i = digits.size(); i-- > 0; number >>= 4)
        digits[i] = "0123456789abcdef"[number & 15];
    return digits;
}

std::filesystem::path LockOf(std::filesystem::path journal) {
    return journal += ".lock";
}

// `line` without its line feed.
bool IsWhole(std::string_view line) {
    if (line.size() < kContentStart) return false;
    return line.starts_with(kVersion) && line[kContentStart - 1] == ' '
           && line.substr(kVersion.size(), kChecksumDigits) == HexDigits(Crc32(line.substr(kContentStart)));
}

} // namespace

std::uint32_t Crc32(std::string_view bytes) {
    std::uint32_t value = 0xFFFFFFFFu;
    // Eight bytes at a time: a start over a million records is mostly this.
    for (; bytes.size() >= kCrcStep; bytes.remove_prefix(kCrcStep)) {
        const std::uint32_t low = qmx::Load(bytes.data()) ^ value;
        const std::uint32_t high = qmx::Load(bytes.data() + 4);
        value = 0;
        for (std::size_t i = 0; i < 4; ++i)
            value ^= kCrcTable[7 - i][(low >> (8 * i)) & 0xFFu] ^ kCrcTable[3 - i][(high >> (8 * i)) & 0xFFu];
    }
    for (const char c : bytes)
        value = (value >> 8) ^ kCrcTable[0][(value ^ static_cast<unsigned char>(c)) & 0xFFu];
    return ~value;
}

std::string JournalLine(std::string_view content) {
    std::string line(kVersion);
    line.append(HexDigits(Crc32(content))).append(" ").append(content).append("\n");
    return line;
}

JournalText ReadJournalText(std::string_view text) {
    JournalText result;
    while (result.end < text.size()) {
        const std::size_t lineEnd = text.find('\n', result.end);
        if (lineEnd == text.npos) {
            result.torn = true;
            break;
        }
        const std::string_view line = text.substr(result.end, lineEnd - result.end);
        if (!IsWhole(line)) {
            result.damaged = true;
            break;
        }
        result.records.emplace_back(line.substr(kContentStart));
        result.end = lineEnd + 1;
    }
    return result;
}

Journal::Journal(std::filesystem::path path, std::unique_ptr<DurableFile> lock,
                 std::unique_ptr<DurableFile> file, std::uint64_t end)
    : m_path(std::move(path)), m_lock(std::move(lock)), m_file(std::move(file)), m_end(end) {}

Journal::~Journal() {
    const std::filesystem::path lock = LockOf(m_path);
    m_file.reset();
    // Where an open file can be removed, it must go while it is held; elsewhere nobody else can have it open.
    std::error_code fault;
    const bool isRemoved = std::filesystem::remove(lock, fault);
    m_lock.reset();
    if (!isRemoved) std::filesystem::remove(lock, fault);
}

JournalOpening Journal::Open(const std::filesystem::path& path) {
    JournalOpening opening;
    const std::string name = TextOfPath(path);
    std::string reason;
    std::unique_ptr<DurableFile> lock = DurableFile::Open(LockOf(path), reason);
    std::unique_ptr<DurableFile> file = lock ? DurableFile::Open(path, reason) : nullptr;
    auto text = std::make_unique<std::string>();
    if (!file || !file->ReadAll(*text, reason)) {
        opening.error = "journal " + name + " " + reason;
        return opening;
    }
    JournalText judged = ReadJournalText(*text);
    if (judged.damaged) {
        opening.error = "journal " + name + " is damaged: record " + std::to_string(judged.records.size() + 1)
                        + " at offset " + std::to_string(judged.end) + " does not match its checksum";
        return opening;
    }
    if (judged.torn) {
        if (!file->CutTo(judged.end, reason)) {
            opening.error = "journal " + name + " ends in a torn record and " + reason;
            return opening;
        }
        opening.warning = "journal " + name + ": dropped a torn last record of "
                          + std::to_string(text->size() - judged.end) + " bytes at offset "
                          + std::to_string(judged.end);
    }
    opening.text = std::move(text);
    opening.records = std::move(judged.records);
    opening.journal.reset(new Journal(path, std::move(lock), std::move(file), judged.end));
    return opening;
}

void JournalBatch::Add(std::string_view content) {
    m_isWritable = m_isWritable && content.find('\n') == content.npos;
    m_lines += JournalLine(content);
}

bool Journal::Append(std::string_view content, std::string& error) {
    JournalBatch one;
    one.Add(content);
    return Append(one, error);
}

bool Journal::Append(const JournalBatch& batch, std::string& error) {
    if (m_broken) {
        error = "an earlier failure left the journal unusable";
        return false;
    }
    if (!batch.m_isWritable) {
        error = "a record is one line";
        return false;
    }
    if (!m_file->Append(batch.m_lines, error)) {
        // What was written of the records must go, or the next one would follow on their line.
        std::string cutError;
        m_broken = !m_file->CutTo(m_end, cutError);
        return false;
    }
    m_end += batch.m_lines.size();
    return true;
}

} // namespace vesk

#include "host/server/journal/JournalText.h"

#include "base/Text.h"
#include "host/connectvesk/Wire.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vesk {
namespace {

constexpr std::string_view kOldMark = "V1 ", kFirstMark = "V2F ", kNextMark = "V2R ";
constexpr std::size_t kChecksumDigits = 8;
constexpr std::size_t kLongestTorn = std::size_t{1} << 20; // no record is as long

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
std::optional<std::uint32_t> ReadHexDigits(std::string_view digits) {
    std::uint32_t number = 0;
    for (const char digit : digits) {
        const std::size_t value = std::string_view("0123456789abcdef").find(digit);
        if (value == std::string_view::npos) return std::nullopt;
        number = number << 4 | static_cast<std::uint32_t>(value);
    }
    return number;
}

struct Line {
    bool isFirst = false;
    std::uint64_t number = 0;
    std::uint32_t sum = 0;
    std::string_view content;
};

// `text` without its line feed; none when it is no line. An old one has no number.
std::optional<Line> Read(std::string_view text, bool isOld) {
    Line line;
    line.isFirst = text.starts_with(kFirstMark);
    const std::string_view mark = isOld ? kOldMark : line.isFirst ? kFirstMark : kNextMark;
    if (!text.starts_with(mark)) return std::nullopt;
    text.remove_prefix(mark.size());
    if (!isOld) {
        const std::size_t blank = text.find(' ');
        const auto number = base::ReadNumber<std::uint64_t>(text.substr(0, blank));
        if (blank == text.npos || !number || (text[0] == '0' && blank > 1)) return std::nullopt;
        line.number = *number;
        text.remove_prefix(blank + 1);
    }
    if (text.size() <= kChecksumDigits || text[kChecksumDigits] != ' ') return std::nullopt;
    const auto sum = ReadHexDigits(text.substr(0, kChecksumDigits));
    if (!sum) return std::nullopt;
    line.sum = *sum;
    line.content = text.substr(kChecksumDigits + 1);
    return line;
}

// Of a line behind others whose checksum is `before`.
std::uint32_t SumOf(std::uint64_t number, std::string_view content, std::uint32_t before) {
    return Crc32(content, Crc32(std::to_string(number) + " ", before));
}

// What is wrong with the line as the next of the chain; null when nothing is.
const char* FaultOf(const std::optional<Line>& line, const JournalChain& chain, bool isOld) {
    if (!line) return "is none";
    if (isOld) return line->sum == Crc32(line->content) ? nullptr : "does not match its checksum";
    if (line->isFirst != chain.isFirst) return chain.isFirst ? "is not a journal's first" : "begins a journal";
    if (!chain.isFirst && line->number != chain.number + 1) return "does not follow the one before";
    if (line->sum != SumOf(line->number, line->content, chain.sum))
        return "does not match its checksum, or the one before";
    return nullptr;
}

void GoOn(JournalChain& chain, const Line& line, bool isOld) {
    chain = {isOld ? chain.number + 1 : line.number, line.sum, false};
}

// Whether a crash can have left it as the beginning of the next record.
bool MayBeTorn(std::string_view tail, const JournalChain& chain, bool isOld) {
    if (tail.size() > kLongestTorn) return false;
    if (std::ranges::any_of(tail, [](char c) { return static_cast<unsigned char>(c) < ' '; })) return false;
    const std::string mark = isOld           ? std::string(kOldMark)
                             : chain.isFirst ? std::string(kFirstMark)
                                             : std::string(kNextMark) + std::to_string(chain.number + 1) + " ";
    const std::size_t length = std::min(tail.size(), mark.size());
    if (tail.substr(0, length) != std::string_view(mark).substr(0, length)) return false;
    // A whole record with something else for its line feed was on the disk.
    return FaultOf(Read(tail.substr(0, tail.size() - 1), isOld), chain, isOld) != nullptr;
}

constexpr std::size_t kHeadLength = 32;

std::string PlaceOf(std::size_t record, std::uint64_t offset) {
    return "record " + std::to_string(record) + " at offset " + std::to_string(offset) + " ";
}

} // namespace

std::uint32_t Crc32(std::string_view bytes, std::uint32_t before) {
    std::uint32_t value = ~before;
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

void JournalChain::AppendLine(std::string& lines, std::string_view content) {
    ++number;
    sum = SumOf(number, content, sum);
    lines.append(isFirst ? kFirstMark : kNextMark).append(std::to_string(number)).append(" ");
    lines.append(HexDigits(sum)).append(" ").append(content).append("\n");
    isFirst = false;
}

JournalText ReadJournalText(std::string_view text) {
    JournalText result;
    result.isOld = text.starts_with(kOldMark);
    while (result.end < text.size()) {
        const std::size_t lineEnd = text.find('\n', result.end);
        const std::string_view whole = text.substr(result.end, lineEnd - result.end);
        if (lineEnd == text.npos && MayBeTorn(whole, result.chain, result.isOld)) {
            result.isTorn = true;
            break;
        }
        const auto line = Read(whole, result.isOld);
        const char* fault = lineEnd == text.npos ? "is none" : FaultOf(line, result.chain, result.isOld);
        if (fault) {
            result.damage = PlaceOf(result.records.size() + 1, result.end) + fault;
            break;
        }
        GoOn(result.chain, *line, result.isOld);
        result.records.push_back(line->content);
        result.end = lineEnd + 1;
    }
    return result;
}

std::vector<std::string> FindJournalFaults(std::string_view text) {
    std::vector<std::string> faults;
    const bool isOld = text.starts_with(kOldMark);
    JournalChain chain;
    std::size_t record = 0;
    for (std::size_t end = 0, start = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find('\n', start), text.size());
        const auto line = Read(text.substr(start, end - start), isOld);
        const char* fault = end == text.size() ? "has no end" : FaultOf(line, chain, isOld);
        if (fault) faults.push_back(PlaceOf(record + 1, start) + fault);
        ++record;
        // From here on, so that one fault is told once.
        if (line) GoOn(chain, *line, isOld);
    }
    return faults;
}

std::string HeadOf(const JournalChain& chain) {
    std::string head = "V2 " + std::to_string(chain.number) + " " + std::to_string(chain.sum);
    head.resize(kHeadLength - 1, ' ');
    return head + "\n";
}

std::string MissingBy(const std::string& head, const JournalText& judged) {
    const std::string text = head.substr(0, head.find_last_not_of(" \n") + 1);
    const std::size_t blank = text.find(' ', 3);
    if (head.size() != kHeadLength || !text.starts_with("V2 ") || blank == text.npos) return {};
    const auto number = base::ReadNumber<std::uint64_t>(std::string_view(text).substr(3, blank - 3));
    if (!number || *number < judged.chain.number) return {};
    if (*number == judged.chain.number && HeadOf(judged.chain) == head) return {};
    return "ends with record " + std::to_string(judged.chain.number) + ", and was written to record "
           + std::to_string(*number);
}

} // namespace vesk

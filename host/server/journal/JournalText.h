// The text of a journal, apart from any file. A record is a line:
//
//     V2F 1 3b2c11d0 {...}       the first of the file
//     V2R 2 99e01a47 {...}       any other
//
// A mark, the record's number, a checksum, and the content: one JSON text without line breaks. The numbers
// follow each other, and go on in a journal that is written anew. The checksum is the CRC-32 of the numbers and
// contents of the file so far: a line that is gone, changed, doubled or elsewhere is found.
//
// Lines of older journals stand each for itself: "V1 3b2c11d0 {...}".
//
// Thread: any; plain values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// Of the bytes behind others whose checksum is `before`.
std::uint32_t Crc32(std::string_view bytes, std::uint32_t before = 0);

// What the next line hangs on.
struct JournalChain {
    std::uint64_t number = 0; // of the last record; of one of an older journal it is its place
    std::uint32_t sum = 0;    // its checksum
    bool isFirst = true;      // the next line is the file's first

    void AppendLine(std::string& lines, std::string_view content);
    bool operator==(const JournalChain&) const = default;
};

// The text must outlive the records.
struct JournalText {
    std::vector<std::string_view> records;
    JournalChain chain{};  // behind the last whole record
    std::uint64_t end = 0; // offset behind it
    bool isOld = false;    // of version 1
    bool isTorn = false;   // what follows is the beginning of the next record, and nobody was told of it
    std::string damage{};  // what follows is none: why. Empty when all is well
};
JournalText ReadJournalText(std::string_view text);

// How far a journal is, as a text of a fixed length that stands beside it.
std::string HeadOf(const JournalChain& chain);
// What of a journal with this head was on the disk and is gone; empty when nothing is. What a crash of the
// machine left of the head tells nothing.
std::string MissingBy(const std::string& head, const JournalText& judged);

// All that is wrong with it, with places; empty when nothing is.
std::vector<std::string> FindJournalFaults(std::string_view text);

} // namespace vesk

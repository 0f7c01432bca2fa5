// How a message lies in memory, behind the scratch buffer's fill length or as received bytes.
//
//   message: signature, length of the whole message, fields
//   field:   tag, number of values, size in bytes of the values, values
//   value:   length, bytes
//
// All numbers are 32-bit, little-endian, unaligned.
#pragma once

#include "sdk/Qmx.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace qmx {

static_assert(std::endian::native == std::endian::little);

inline constexpr std::uint32_t kSignature = 0x31584D51; // "QMX1"
inline constexpr std::uint32_t kHeaderSize = 8;
inline constexpr std::uint32_t kFieldHeaderSize = 12;
inline constexpr std::uint32_t kLengthSize = 4;

inline std::uint32_t Load(const char* from) {
    std::uint32_t number;
    std::memcpy(&number, from, sizeof number);
    return number;
}
inline void Store(char* to, std::uint32_t number) {
    std::memcpy(to, &number, sizeof number);
}

struct FieldHeader {
    std::uint32_t tag;
    std::uint32_t count;
    std::uint32_t size;
};

// Of a message that has been opened, and is whole.
inline std::size_t CountFields(std::string_view message) {
    std::size_t count = 0;
    for (std::size_t position = kHeaderSize; position < message.size(); ++count)
        position += kFieldHeaderSize + Load(message.data() + position + kFieldHeaderSize - kLengthSize);
    return count;
}

// Which tags may be in a message: a clear flag says surely not. Saves the writer a scan for doubles and the
// reader a scan for absent fields. A byte a flag, which one instruction reads or sets.
class TagFilter {
public:
    // False when it may have been there before.
    bool Add(std::uint32_t tag) {
        bool& flag = m_flags[Hash(tag)];
        if (flag) return false;
        flag = true;
        return true;
    }
    bool MayHave(std::uint32_t tag) const { return m_flags[Hash(tag)]; }

private:
    static std::uint32_t Hash(std::uint32_t tag) { return tag * 0x9E3779B1u >> 24; }

    bool m_flags[256] = {};
};

} // namespace qmx

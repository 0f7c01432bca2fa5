#include "plugin/import/Encoding.h"

#include "base/Text.h"

#include <algorithm>
#include <cstring>

namespace planfold {

namespace {

constexpr std::uint32_t kUnreadable = 0xFFFD;

// What Windows-1252 has where Latin-1 has control characters.
constexpr std::uint16_t kWindows1252[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                            0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

unsigned At(std::string_view bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

// How many bytes the character at `place` has; 0 when it is no UTF-8.
std::size_t Utf8Length(std::string_view bytes, std::size_t place) {
    const unsigned lead = At(bytes, place);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || place + length > bytes.size()) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((At(bytes, place + i) & 0xC0) != 0x80) return 0;
    const unsigned second = length > 2 ? At(bytes, place + 1) : 0;
    const bool isFault = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)
                         || (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return isFault ? 0 : length;
}

bool IsUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        std::uint64_t eight = 0;
        if (bytes.size() - at >= sizeof eight) {
            std::memcpy(&eight, bytes.data() + at, sizeof eight);
            if ((eight & 0x8080'8080'8080'8080) == 0) {
                at += sizeof eight;
                continue;
            }
        }
        const std::size_t length = Utf8Length(bytes, at);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

// Without a mark, the side on which the letters' zeros stand tells the order.
bool IsBigEndian(std::string_view bytes) {
    if (bytes.starts_with("\xFE\xFF")) return true;
    if (bytes.starts_with("\xFF\xFE")) return false;
    std::size_t zerosInFront = 0, zerosBehind = 0;
    for (std::size_t at = 0; at + 1 < std::min<std::size_t>(bytes.size(), 2048); at += 2) {
        zerosInFront += bytes[at] == 0;
        zerosBehind += bytes[at + 1] == 0;
    }
    return zerosInFront > zerosBehind;
}

std::string FromUtf16(std::string_view bytes) {
    const std::size_t high = IsBigEndian(bytes) ? 0 : 1;
    const auto unit = [&](std::size_t at) {
        return static_cast<std::uint32_t>(At(bytes, at + high) << 8 | At(bytes, at + 1 - high));
    };
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t character = unit(at);
        if (at == 0 && character == 0xFEFF) continue;
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        const std::uint32_t next = isHigh && at + 3 < bytes.size() ? unit(at + 2) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00);
            at += 2;
        }
        AppendUtf8(character, text);
    }
    if (bytes.size() % 2 != 0) AppendUtf8(kUnreadable, text);
    return text;
}

std::string FromWindows1252(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const unsigned byte = At(bytes, at);
        AppendUtf8(byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte, text);
    }
    return text;
}

} // namespace

void AppendUtf8(std::uint32_t character, std::string& text) {
    if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) character = kUnreadable;
    if (character < 0x80) return text.push_back(static_cast<char>(character));
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    text.push_back(static_cast<char>(kLeads[more] | character >> 6 * more));
    for (int i = more - 1; i >= 0; --i)
        text.push_back(static_cast<char>(0x80 | (character >> 6 * i & 0x3F)));
}

std::string_view TextInUtf8(std::string_view bytes, std::string& kept) {
    if (base::IsUtf16(bytes)) return kept = FromUtf16(bytes);
    if (IsUtf8(bytes)) return base::WithoutMark(bytes);
    return kept = FromWindows1252(bytes);
}

} // namespace planfold

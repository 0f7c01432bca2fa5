#include "host/korvexcontrols/model/Cells.h"

#include "base/Text.h"

#include <algorithm>
#include <cstring>

namespace korvex {

std::size_t CommonPrefixFolded(std::string_view one, std::string_view other) {
    const std::size_t shorter = std::min(one.size(), other.size());
    std::size_t at = 0;
    while (at < shorter && Fold(one[at]) == Fold(other[at]))
        ++at;
    return at;
}

int CompareFolded(std::string_view one, std::string_view other) {
    const std::size_t at = CommonPrefixFolded(one, other);
    const int left = at < one.size() ? Fold(one[at]) : -1;
    const int right = at < other.size() ? Fold(other[at]) : -1;
    return left - right;
}

bool StartsWithFolded(std::string_view text, std::string_view start) {
    return CommonPrefixFolded(text, start) == start.size();
}

namespace {

// Eight characters as one number, a byte each.
constexpr std::size_t kPlaces = 8;
constexpr std::uint64_t kEach = 0x0101010101010101;

// Tells quickly that a text is not there: no place has its first character with its last one so far behind it.
// A branch for each place could not be foreseen, and would wait for memory. All letters are taken for small
// ones, and with them some other characters: those places are looked at again.
class EndsOf {
public:
    explicit EndsOf(std::string_view folded)
        : m_first(All(folded.front())), m_last(All(folded.back())), m_distance(folded.size() - 1) {}

    bool FitsInto(std::string_view text) const { return text.size() >= m_distance + kPlaces; }
    bool MayBeIn(std::string_view text) const {
        const std::size_t end = text.size() - m_distance - kPlaces;
        std::uint64_t found = At(&text[0]) | At(&text[end]);
        for (std::size_t at = kPlaces; at < end; at += kPlaces)
            found |= At(&text[at]);
        return found != 0;
    }

private:
    static std::uint64_t Small(std::uint64_t characters) { return characters | kEach * 0x20; }
    static std::uint64_t All(char character) { return Small(kEach * static_cast<unsigned char>(character)); }
    static std::uint64_t Read(const char* text) {
        std::uint64_t characters = 0;
        std::memcpy(&characters, text, kPlaces);
        return Small(characters);
    }
    // Not zero when they stand at one of the places from there.
    std::uint64_t At(const char* text) const {
        const std::uint64_t others = (Read(text) ^ m_first) | (Read(text + m_distance) ^ m_last);
        return (others - kEach) & ~others & kEach * 0x80; // the highest bit of a byte that is zero
    }

    std::uint64_t m_first, m_last;
    std::size_t m_distance;
};

} // namespace

bool ContainsFolded(std::string_view text, std::string_view folded) {
    if (folded.empty()) return true;
    if (text.size() < folded.size()) return false;
    if (const EndsOf ends(folded); ends.FitsInto(text) && !ends.MayBeIn(text)) return false;
    const char* last = text.data() + (text.size() - folded.size());
    const auto first = static_cast<unsigned char>(folded.front());
    for (const char* at = text.data(); at <= last; ++at) {
        if (Fold(*at) != first) continue;
        std::size_t same = 1;
        while (same < folded.size() && Fold(at[same]) == static_cast<unsigned char>(folded[same]))
            ++same;
        if (same == folded.size()) return true;
    }
    return false;
}

namespace {

constexpr std::size_t kKeyFraction = 4, kKeyWhole = 14;

std::string_view TakeDigits(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && text[length] >= '0' && text[length] <= '9')
        ++length;
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

// Reads the usual cell in one pass: it has no blanks, no sign but "-" and no more digits than a key holds.
std::optional<std::int64_t> ReadPlainKey(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative) text.remove_prefix(1);
    std::int64_t key = 0;
    std::size_t at = 0;
    const auto take = [&](std::size_t end) {
        const std::size_t begin = at;
        for (unsigned digit; at < end && (digit = static_cast<unsigned>(text[at]) - '0') <= 9; ++at)
            key = key * 10 + digit;
        return at - begin;
    };
    const std::size_t whole = take(std::min(text.size(), kKeyWhole));
    if (whole == 0) return std::nullopt;
    std::size_t fraction = 0;
    if (at < text.size() && text[at] == '.') {
        ++at;
        fraction = take(std::min(text.size(), at + kKeyFraction));
    }
    if (at != text.size()) return std::nullopt;
    constexpr std::int64_t scales[kKeyFraction + 1] = {10000, 1000, 100, 10, 1};
    key *= scales[fraction];
    return negative ? -key : key;
}

int CompareSizes(const Decimal& one, const Decimal& other) {
    if (one.whole.size() != other.whole.size()) return one.whole.size() < other.whole.size() ? -1 : 1;
    if (const int order = one.whole.compare(other.whole)) return order;
    return one.fraction.compare(other.fraction);
}

} // namespace

std::optional<Decimal> ReadDecimal(std::string_view text) {
    text = base::Trimmed(text, " ");
    Decimal decimal;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        decimal.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    decimal.whole = TakeDigits(text);
    bool any = !decimal.whole.empty();
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        decimal.fraction = TakeDigits(text);
        any |= !decimal.fraction.empty();
    }
    if (!any || !text.empty()) return std::nullopt;
    while (!decimal.whole.empty() && decimal.whole.front() == '0')
        decimal.whole.remove_prefix(1);
    while (!decimal.fraction.empty() && decimal.fraction.back() == '0')
        decimal.fraction.remove_suffix(1);
    if (decimal.whole.empty() && decimal.fraction.empty()) decimal.negative = false;
    return decimal;
}

int Compare(const Decimal& one, const Decimal& other) {
    if (one.negative != other.negative) return one.negative ? -1 : 1;
    const int order = CompareSizes(one, other);
    return one.negative ? -order : order;
}

std::optional<DecimalKey> ReadKey(std::string_view text) {
    if (const auto key = ReadPlainKey(text)) return DecimalKey{*key, true};
    const auto decimal = ReadDecimal(text);
    if (!decimal) return std::nullopt;
    if (decimal->whole.size() > kKeyWhole)
        return DecimalKey{decimal->negative ? DecimalKey::lowest : DecimalKey::highest, false};
    std::int64_t key = 0;
    for (const char digit : decimal->whole)
        key = key * 10 + (digit - '0');
    for (std::size_t i = 0; i < kKeyFraction; ++i)
        key = key * 10 + (i < decimal->fraction.size() ? decimal->fraction[i] - '0' : 0);
    return DecimalKey{decimal->negative ? -key : key, decimal->fraction.size() <= kKeyFraction};
}

} // namespace korvex

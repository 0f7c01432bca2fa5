#include "host/korvexcontrols/model/Cells.h"

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

// Places of a text that are looked at together: a branch for each of them could not be foreseen.
constexpr std::size_t kPlaces = 16;

// Whether the two characters stand one behind the other at one of the places that begin there.
bool HasPairFolded(const char* text, char first, char second) {
    std::array<char, kPlaces> one, next;
    std::memcpy(one.data(), text, kPlaces);
    std::memcpy(next.data(), text + 1, kPlaces);
    char found = 0;
    for (std::size_t i = 0; i < kPlaces; ++i) {
        const auto fold = [](char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c); };
        found = static_cast<char>(found | (int{fold(one[i]) == first} & int{fold(next[i]) == second}));
    }
    return found != 0;
}

// The same in a text that has more characters than places; the last places are looked at twice.
bool HasPairFolded(std::string_view text, char first, char second) {
    const std::size_t last = text.size() - kPlaces - 1;
    bool found = HasPairFolded(text.data() + last, first, second);
    for (std::size_t at = 0; at < last; at += kPlaces)
        found |= HasPairFolded(text.data() + at, first, second);
    return found;
}

} // namespace

bool ContainsFolded(std::string_view text, std::string_view folded) {
    if (folded.empty()) return true;
    if (text.size() < folded.size()) return false;
    if (folded.size() > 1 && text.size() > kPlaces && !HasPairFolded(text, folded[0], folded[1])) return false;
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

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
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
    text = Trimmed(text);
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

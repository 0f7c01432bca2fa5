#include "host/korvexcontrols/model/Text.h"

#include <algorithm>

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

bool ContainsFolded(std::string_view text, std::string_view folded) {
    if (folded.empty()) return true;
    if (text.size() < folded.size()) return false;
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

} // namespace korvex

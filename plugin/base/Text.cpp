#include "plugin/base/Text.h"

#include <algorithm>

namespace planfold {

bool EqualsIgnoringCase(std::string_view text, std::string_view other) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(text, other, {}, lower, lower);
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view beginning) {
    return EqualsIgnoringCase(text.substr(0, beginning.size()), beginning);
}

int NextCsvField(std::string_view line, int start, std::string_view& field) {
    field = {};
    auto at = static_cast<std::size_t>(start);
    if (start != 0) {
        if (start < 0 || at >= line.size() || line[at] != ',') return -1;
        ++at;
    }
    // A zero ends the text as it does for every reader of it.
    constexpr std::string_view ends(",\n\r\0", 4);
    const std::size_t end = std::min(line.find_first_of(ends, at), line.size());
    field = line.substr(at, end - at);
    return end < line.size() && line[end] == '\n' ? -1 : static_cast<int>(end);
}

} // namespace planfold

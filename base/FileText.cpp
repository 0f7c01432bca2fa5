#include "base/FileText.h"

#include <algorithm>
#include <cstddef>

namespace base {

std::string_view WithoutMark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    return text;
}

// Without a mark it is one whose first characters mostly have a zero for one half, and hardly for the other.
bool IsUtf16(std::string_view text) {
    constexpr std::size_t fewest = 16, enough = 4096;
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return true;
    std::size_t zeros[2] = {};
    const std::size_t looked = std::min(text.size(), enough);
    for (std::size_t i = 0; i < looked; ++i)
        zeros[i % 2] += text[i] == '\0';
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return looked >= fewest && many >= looked / 4 && few <= many / 8;
}

} // namespace base

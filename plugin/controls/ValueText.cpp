#include "plugin/controls/ValueText.h"

namespace planfold {

bool MayBeTyped(char32_t typed, std::string_view allowed) {
    constexpr std::string_view controlCodes("\x03\x08\x16\x18"); // copy, backspace, paste, cut
    if (allowed.empty()) return true;
    const char c = static_cast<char>(typed);
    return typed < 0x80 && (allowed.find(c) != allowed.npos || controlCodes.find(c) != controlCodes.npos);
}

std::string CleanValueText(std::string_view text) {
    std::string clean;
    bool point = false;
    for (const char c : text) {
        const bool firstPoint = c == '.' && !point;
        point = point || firstPoint;
        if (firstPoint || (c >= '0' && c <= '9')) clean += c;
    }
    return clean;
}

} // namespace planfold

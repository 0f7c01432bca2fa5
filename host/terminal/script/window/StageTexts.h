// How the script's checks compare and what they say.
#pragma once

#include "host/terminal/script/ScriptRunner.h"

namespace vesk {

inline StepResult Compare(const std::string& what, const std::string& found, const std::string& expected) {
    if (found == expected) return StepResult::Done();
    return StepResult::Again(what + " is \"" + found + "\", not \"" + expected + '"');
}

inline std::string Joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : ", ") + text;
    return result;
}

// The command's words from this one on.
inline std::string Joined(const ScriptCommand& command, std::ptrdiff_t first) {
    return Joined({command.words.begin() + first, command.words.end()});
}

} // namespace vesk

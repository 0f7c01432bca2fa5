// Asks the user for a number.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace vesk {

struct CountQuestion {
    const char* caption;
    const char* label;
    int usual;
    int most; // from 1
    // A text that is asked for besides; null when there is none.
    const char* textLabel = nullptr;
    std::string* text = nullptr; // what it begins with, and becomes
};

// Runs until the user has answered; nothing when he cancels.
std::optional<int> AskCount(HWND owner, const CountQuestion& question);

} // namespace vesk

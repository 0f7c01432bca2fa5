// Asks the user for a number.
#pragma once

#include <windows.h>

#include <optional>

namespace vesk {

struct CountQuestion {
    const char* caption;
    const char* label;
    int usual;
    int most; // from 1
};

// Runs until the user has answered; nothing when he cancels.
std::optional<int> AskCount(HWND owner, const CountQuestion& question);

} // namespace vesk

// Asks the user for a number. The identifiers are for the resource compiler too.
#pragma once

#define IDD_COUNT 10
#define IDD_COUNT_OF 11
#define IDC_COUNT_LABEL 600
#define IDC_COUNT 601
#define IDC_TEXT_LABEL 602
#define IDC_TEXT 603

#ifndef RC_INVOKED

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

#endif

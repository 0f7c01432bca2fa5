// Who is logged in, what they may do, and how the terminal starts: data/terminal.json.
#pragma once

#include "host/files/Files.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct TerminalConfig {
    std::string loginId;
    std::string peerIdA; // broker
    std::string peerIdB; // branch
    int loginMode = 0;   // kLeastLoginMode to kMostLoginMode
    int clientSearchMs = 700;
    bool clientOverview = false;
    int fontVariation = 0; // points added
    int fontSize = 0;      // points; 0 leaves a window's own
    std::vector<std::string> products;
    std::map<std::string, bool, std::less<>> rights;

    static constexpr int kLeastLoginMode = 0;
    static constexpr int kMostLoginMode = 4;

    // Members that the file leaves out keep the values above; one of a wrong type or range is a fault.
    static Loaded<TerminalConfig> Load(const std::string& path);
    static Loaded<TerminalConfig> Parse(std::string_view text, std::string_view fileName);
};

} // namespace vesk

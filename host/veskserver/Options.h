// What veskserver is asked to do.
#pragma once

#include "host/server/RowQuery.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct ServerOptions {
    bool help = false;
    bool tellsVersion = false;
    bool checksJournal = false; // and does nothing else
    bool tellsStatus = false;   // the same
    bool takesCommands = false; // from terminals
    std::uint16_t port = 0;
    std::string journal;
    std::string config;               // empty: the usual settings
    std::string data;                 // the terminal's folder; empty: none
    std::vector<UserIdentity> logins; // that need a secret
};

extern const std::string_view kServerHelp;

// The words behind the program's name. The answer says what is wrong with them, if anything.
std::optional<std::string> ReadServerOptions(std::span<const std::string> words, ServerOptions& options);

} // namespace vesk

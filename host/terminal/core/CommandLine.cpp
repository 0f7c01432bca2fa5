#include "host/terminal/core/CommandLine.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace vesk {
namespace {

struct Option {
    std::string_view name;
    std::string StartOptions::*member;
};
constexpr Option kOptions[] = {
    {"--data", &StartOptions::dataFolder}, {"--user", &StartOptions::userFolder},
    {"--journal", &StartOptions::journal}, {"--script", &StartOptions::scriptFile},
    {"--log", &StartOptions::logFile},     {"--out", &StartOptions::outFolder},
};

} // namespace

StartOptions ParseCommandLine(std::span<const char* const> words) {
    StartOptions options;
    for (std::size_t i = 0; i < words.size(); i += 2) {
        const std::string_view name = words[i];
        const auto* option = std::ranges::find(kOptions, name, &Option::name);
        if (option == std::end(kOptions)) {
            options.fault = "unknown option " + std::string(name);
            return options;
        }
        if (i + 1 == words.size()) {
            options.fault = std::string(name) + " needs a path";
            return options;
        }
        options.*(option->member) = words[i + 1];
    }
    return options;
}

} // namespace vesk

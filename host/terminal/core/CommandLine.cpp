#include "host/terminal/core/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace vesk {
namespace {

template <std::string StartOptions::*member>
bool ReadPath(StartOptions& options, std::string_view text) {
    options.*member = text;
    return true;
}

bool ReadServer(StartOptions& options, std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    options.serverHost = text.substr(0, colon);
    const std::string_view port = text.substr(colon + 1);
    const char* end = port.data() + port.size();
    const auto read = std::from_chars(port.data(), end, options.serverPort);
    return read.ec == std::errc() && read.ptr == end && options.serverPort != 0;
}

struct Option {
    std::string_view name, value;
    bool (*read)(StartOptions& options, std::string_view text); // false: not understood
};
constexpr Option kOptions[] = {
    {"--data", "a path", ReadPath<&StartOptions::dataFolder>},
    {"--user", "a path", ReadPath<&StartOptions::userFolder>},
    {"--journal", "a path", ReadPath<&StartOptions::journal>},
    {"--server", "HOST:PORT", ReadServer},
    {"--script", "a path", ReadPath<&StartOptions::scriptFile>},
    {"--log", "a path", ReadPath<&StartOptions::logFile>},
    {"--out", "a path", ReadPath<&StartOptions::outFolder>},
};

} // namespace

StartOptions ParseCommandLine(std::span<const std::string> words) {
    StartOptions options;
    for (std::size_t i = 0; i < words.size(); i += 2) {
        const std::string_view name = words[i];
        const auto* option = std::ranges::find(kOptions, name, &Option::name);
        if (option == std::end(kOptions)) {
            options.fault = "unknown option " + std::string(name);
            return options;
        }
        if (i + 1 == words.size() || !option->read(options, words[i + 1])) {
            options.fault = std::string(name) + " needs " + std::string(option->value);
            return options;
        }
    }
    return options;
}

} // namespace vesk

#include "host/terminal/core/CommandLine.h"

#include "host/files/OptionRows.h"

#include <charconv>

namespace vesk {
namespace {

bool ReadServer(StartOptions& options, std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    options.serverHost = text.substr(0, colon);
    const std::string_view port = text.substr(colon + 1);
    const char* end = port.data() + port.size();
    const auto read = std::from_chars(port.data(), end, options.serverPort);
    return read.ec == std::errc() && read.ptr == end && options.serverPort != 0;
}

constexpr OptionRow<StartOptions> kOptions[] = {
    {"--data", ReadText<&StartOptions::dataFolder>, "a path"},
    {"--user", ReadText<&StartOptions::userFolder>, "a path"},
    {"--journal", ReadText<&StartOptions::journal>, "a path"},
    {"--server", ReadServer, "HOST:PORT"},
    {"--script", ReadText<&StartOptions::scriptFile>, "a path"},
    {"--log", ReadText<&StartOptions::logFile>, "a path"},
    {"--out", ReadText<&StartOptions::outFolder>, "a path"},
};

} // namespace

StartOptions ParseCommandLine(std::span<const std::string> words) {
    StartOptions options;
    const auto noWord = [](const std::string&) { return false; };
    options.fault = ReadOptionRows<StartOptions>(words, kOptions, options, noWord).value_or("");
    return options;
}

} // namespace vesk

#include "host/terminal/core/Settings.h"

#include "base/Text.h"
#include "host/files/Files.h"
#include "host/files/Json.h"
#include "host/files/OptionRows.h"

#include <system_error>

namespace vesk {

namespace {

bool ReadServer(StartOptions& options, std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    options.serverHost = text.substr(0, colon);
    options.serverPort = base::ReadNumber<std::uint16_t>(text.substr(colon + 1)).value_or(0);
    return options.serverPort != 0;
}

constexpr OptionRow<StartOptions> kOptions[] = {
    {"--data", ReadText<&StartOptions::dataFolder>, "a path"},
    {"--user", ReadText<&StartOptions::userFolder>, "a path"},
    {"--journal", ReadText<&StartOptions::journal>, "a path"},
    {"--server", ReadServer, "HOST:PORT"},
    {"--secrets", ReadText<&StartOptions::secretsFile>, "a path"},
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

using nlohmann::json;

Loaded<UserSettings::Sections> UserSettings::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    const Loaded<JsonObject> object = ParseJsonObject(text.Value(), path);
    if (!object) return object.Fault();
    const auto fault = [&](const json& value, std::string what) {
        return FileFault{std::string(FileNameOf(path)), object.Value().LineOf(value), std::move(what)};
    };
    for (const auto& [section, values] : object.Value().Root().items()) {
        if (!values.is_object()) return fault(values, "section \"" + section + "\" is not an object");
        for (const auto& [key, value] : values.items())
            if (!value.is_string()) return fault(value, '"' + section + "\", \"" + key + "\" is not a text");
    }
    return object.Value().Root().get<Sections>();
}

std::optional<FileFault> UserSettings::Open(const std::string& path) {
    m_path = path;
    m_sections.clear();
    std::error_code error;
    if (!std::filesystem::exists(PathOf(path), error)) return std::nullopt;
    Loaded<Sections> sections = Load(path);
    if (!sections) {
        std::filesystem::rename(PathOf(path), PathOf(path + ".bad"), error);
        return sections.Fault();
    }
    m_sections = std::move(sections.Value());
    return std::nullopt;
}

std::optional<std::string> UserSettings::Read(std::string_view section, std::string_view key) const {
    const auto values = m_sections.find(section);
    if (values == m_sections.end()) return std::nullopt;
    const auto value = values->second.find(key);
    if (value == values->second.end()) return std::nullopt;
    return value->second;
}

bool UserSettings::Write(std::string_view section, std::string_view key, std::string_view value) {
    m_sections[std::string(section)][std::string(key)] = value;
    // Texts are in the system's code page; what is not UTF-8 is replaced rather than refused.
    const std::string text = json(m_sections).dump(4, ' ', false, json::error_handler_t::replace) + '\n';
    return WriteWholeFile(m_path, text);
}

} // namespace vesk

#include "host/terminal/core/UserSettings.h"

#include "host/terminal/core/Json.h"

#include <filesystem>
#include <system_error>

namespace vesk {
namespace {

using nlohmann::json;

std::optional<FileFault> CheckShape(const json& root, std::string_view text, std::string_view path) {
    const auto fault = [&](const std::string& member, std::string what) {
        return FileFault{std::string(FileNameOf(path)), LineOfMember(text, member), std::move(what)};
    };
    for (const auto& [section, values] : root.items()) {
        if (!values.is_object()) return fault(section, "section \"" + section + "\" is not an object");
        for (const auto& [key, value] : values.items())
            if (!value.is_string()) return fault(key, '"' + section + "\", \"" + key + "\" is not a text");
    }
    return std::nullopt;
}

} // namespace

std::optional<FileFault> UserSettings::Open(const std::string& path) {
    m_path = path;
    m_sections.clear();
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return std::nullopt;
    Loaded<std::string> text = ReadWholeFile(path);
    if (!text) return text.Fault();
    Loaded<json> root = ParseJsonObject(text.Value(), path);
    std::optional<FileFault> fault;
    if (!root)
        fault = root.Fault();
    else
        fault = CheckShape(root.Value(), text.Value(), path);
    if (fault) {
        std::filesystem::rename(path, path + ".bad", error);
        return fault;
    }
    m_sections = root.Value().get<decltype(m_sections)>();
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

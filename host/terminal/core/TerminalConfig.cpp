#include "host/terminal/core/TerminalConfig.h"

#include "host/terminal/core/Json.h"

#include <optional>

namespace vesk {
namespace {

using nlohmann::json;

struct TextMember {
    const char* name;
    std::string TerminalConfig::*member;
};
constexpr TextMember kTexts[] = {
    {"loginId", &TerminalConfig::loginId},
    {"peerIdA", &TerminalConfig::peerIdA},
    {"peerIdB", &TerminalConfig::peerIdB},
};

struct NumberMember {
    const char* name;
    int TerminalConfig::*member;
    int least, most;
};
constexpr NumberMember kNumbers[] = {
    {"loginMode", &TerminalConfig::loginMode, TerminalConfig::kLeastLoginMode, TerminalConfig::kMostLoginMode},
    {"clientSearchMs", &TerminalConfig::clientSearchMs, 0, 60'000},
    {"fontVariation", &TerminalConfig::fontVariation, -30, 30},
    {"fontSize", &TerminalConfig::fontSize, 0, 72},
};

// The member, when the file has it; null else.
const json* Member(const json& root, const char* name) {
    const auto found = root.find(name);
    return found == root.end() ? nullptr : &*found;
}

std::optional<std::string> ReadScalars(const json& root, TerminalConfig& config) {
    for (const TextMember& row : kTexts)
        if (const json* value = Member(root, row.name)) {
            if (!value->is_string()) return std::string(row.name) + " is not a text";
            config.*row.member = value->get<std::string>();
        }
    for (const NumberMember& row : kNumbers)
        if (const json* value = Member(root, row.name)) {
            if (!value->is_number_integer() || *value < row.least || *value > row.most)
                return std::string(row.name) + " is not a whole number between " + std::to_string(row.least)
                       + " and " + std::to_string(row.most);
            config.*row.member = value->get<int>();
        }
    if (const json* value = Member(root, "clientOverview")) {
        if (!value->is_boolean()) return "clientOverview is neither true nor false";
        config.clientOverview = value->get<bool>();
    }
    return std::nullopt;
}

std::optional<std::string> ReadLists(const json& root, TerminalConfig& config) {
    if (const json* value = Member(root, "products")) {
        if (!value->is_array()) return "products is not a list";
        for (const json& product : *value) {
            if (!product.is_string()) return "products holds something that is not a text";
            config.products.push_back(product.get<std::string>());
        }
    }
    if (const json* value = Member(root, "rights")) {
        if (!value->is_object()) return "rights is not an object";
        for (const auto& [right, granted] : value->items()) {
            if (!granted.is_boolean()) return "right \"" + right + "\" is neither true nor false";
            config.rights[right] = granted.get<bool>();
        }
    }
    return std::nullopt;
}

} // namespace

Loaded<TerminalConfig> TerminalConfig::Load(const std::string& path) {
    Loaded<std::string> text = ReadWholeFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<TerminalConfig> TerminalConfig::Parse(std::string_view text, std::string_view fileName) {
    Loaded<json> root = ParseJsonObject(text, fileName);
    if (!root) return root.Fault();
    TerminalConfig config;
    std::optional<std::string> what = ReadScalars(root.Value(), config);
    if (!what) what = ReadLists(root.Value(), config);
    if (what) return FileFault{std::string(FileNameOf(fileName)), 0, *what};
    return config;
}

} // namespace vesk

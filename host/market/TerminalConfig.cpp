#include "host/market/TerminalConfig.h"

#include "host/files/Json.h"

#include <optional>
#include <utility>

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

// The value that is wrong, its member's name, and how.
struct MemberFault {
    const json* value;
    std::string member;
    std::string what;
};

std::optional<MemberFault> ReadScalars(const json& root, TerminalConfig& config) {
    for (const TextMember& row : kTexts)
        if (const json* value = Member(root, row.name)) {
            if (!value->is_string()) return MemberFault{value, row.name, "is not a text"};
            config.*row.member = value->get<std::string>();
        }
    for (const NumberMember& row : kNumbers)
        if (const json* value = Member(root, row.name)) {
            if (!value->is_number_integer() || *value < row.least || *value > row.most)
                return MemberFault{value, row.name,
                                   "is not a whole number between " + std::to_string(row.least) + " and "
                                       + std::to_string(row.most)};
            config.*row.member = value->get<int>();
        }
    if (const json* value = Member(root, "clientOverview")) {
        if (!value->is_boolean()) return MemberFault{value, "clientOverview", "is neither true nor false"};
        config.clientOverview = value->get<bool>();
    }
    return std::nullopt;
}

std::optional<MemberFault> ReadLists(const json& root, TerminalConfig& config) {
    if (const json* value = Member(root, "products")) {
        if (!value->is_array()) return MemberFault{value, "products", "is not a list"};
        for (const json& product : *value) {
            if (!product.is_string())
                return MemberFault{&product, "products", "holds something that is not a text"};
            config.products.push_back(product.get<std::string>());
        }
    }
    if (const json* value = Member(root, "rights")) {
        if (!value->is_object()) return MemberFault{value, "rights", "is not an object"};
        for (const auto& [right, granted] : value->items()) {
            if (!granted.is_boolean()) return MemberFault{&granted, right, "is neither true nor false"};
            config.rights[right] = granted.get<bool>();
        }
    }
    return std::nullopt;
}

} // namespace

Loaded<TerminalConfig> TerminalConfig::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<TerminalConfig> TerminalConfig::Parse(std::string_view text, std::string_view fileName) {
    const Loaded<JsonObject> read = ParseJsonObject(text, fileName);
    if (!read) return read.Fault();
    const JsonObject& object = read.Value();
    TerminalConfig config;
    std::optional<MemberFault> fault = ReadScalars(object.Root(), config);
    if (!fault) fault = ReadLists(object.Root(), config);
    if (fault)
        return FileFault{std::string(FileNameOf(fileName)), object.LineOf(*fault->value),
                         '"' + fault->member + "\" " + fault->what};
    return config;
}

} // namespace vesk

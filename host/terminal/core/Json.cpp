#include "host/terminal/core/Json.h"

#include <algorithm>

namespace vesk {

namespace {

std::size_t LineAt(std::string_view text, std::size_t offset) {
    return static_cast<std::size_t>(std::ranges::count(text.substr(0, offset), '\n')) + 1;
}

} // namespace

Loaded<nlohmann::json> ParseJsonObject(std::string_view text, std::string_view fileName) {
    const std::string name(FileNameOf(fileName));
    try {
        nlohmann::json value = nlohmann::json::parse(text);
        if (!value.is_object()) return FileFault{name, 1, "an object { } is expected"};
        return value;
    } catch (const nlohmann::json::parse_error& error) {
        return FileFault{name, LineAt(text, error.byte), "this is not JSON"};
    } catch (const nlohmann::json::out_of_range&) {
        return FileFault{name, 0, "a number is too large"};
    }
}

std::size_t LineOfMember(std::string_view text, std::string_view member) {
    const std::size_t found = text.find('"' + std::string(member) + '"');
    return found == std::string_view::npos ? 0 : LineAt(text, found);
}

} // namespace vesk

#include "host/terminal/core/Json.h"

#include <algorithm>

namespace vesk {

Loaded<nlohmann::json> ParseJsonObject(std::string_view text, std::string_view fileName) {
    const std::string name(FileNameOf(fileName));
    try {
        nlohmann::json value = nlohmann::json::parse(text);
        if (!value.is_object()) return FileFault{name, 1, "an object { } is expected"};
        return value;
    } catch (const nlohmann::json::parse_error& error) {
        const auto before = text.substr(0, std::min(error.byte, text.size()));
        const auto line = static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1;
        return FileFault{name, line, "this is not JSON"};
    }
}

} // namespace vesk

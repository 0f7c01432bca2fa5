// Reading the host's JSON files with faults that name file and line.
#pragma once

#include "host/files/Files.h"

#include <nlohmann/json.hpp>

#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

// An object that was read, and where in the text its values stand.
class JsonObject {
public:
    const nlohmann::json& Root() const { return m_root; }
    // The line of this value of it: of the name, where it has one; 0 deep inside, where no setting is.
    std::size_t LineOf(const nlohmann::json& value) const;

private:
    friend class JsonLines;
    friend Loaded<JsonObject> ParseJsonObject(std::string_view text, std::string_view fileName);

    nlohmann::json m_root;
    std::vector<std::pair<nlohmann::json::json_pointer, std::size_t>> m_lines;
};

// The fault is a syntax error with its line, or that the file does not hold an object.
Loaded<JsonObject> ParseJsonObject(std::string_view text, std::string_view fileName);

} // namespace vesk

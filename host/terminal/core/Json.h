// Reading the terminal's JSON files with faults that name file and line.
#pragma once

#include "host/terminal/core/FileFault.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace vesk {

// The fault is a syntax error with its line, or that the file does not hold an object.
Loaded<nlohmann::json> ParseJsonObject(std::string_view text, std::string_view fileName);

// The line on which this member's name first stands; 0 when it stands nowhere.
std::size_t LineOfMember(std::string_view text, std::string_view member);

} // namespace vesk

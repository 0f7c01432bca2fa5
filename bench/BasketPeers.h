// What a basket is loaded beside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace bench {

// By trading symbol.
using TokenMap = std::map<std::string, std::string>;

// Lines cut by a stream, fields in strings, words compared in turn, scrips in a map, a row of strings each.
// Rows that pass.
std::size_t LoadPlainly(const std::string& text, const TokenMap& tokens, std::int64_t now);

// Fields that libcsv finds; it does nothing with them.
std::size_t CutByLibcsv(const std::string& text);

// Line ends, found by memchr.
std::size_t CountLineEnds(const std::string& text);

} // namespace bench

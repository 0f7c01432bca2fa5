// The terminal's data files: comma-separated lines without quoting under one heading line. Blank lines and
// lines that begin with "#" are skipped; CR LF and LF both end a line.
#pragma once

#include "host/files/Files.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// One data line; the views live during the call only. The answer is what is wrong with the line, if anything.
using CsvRow = std::function<std::optional<std::string>(std::span<const std::string_view> fields)>;

// Demands that `heading` is the first line and that each line has as many fields as it, then hands the lines
// to `row`. Stops at the first fault and returns it.
std::optional<FileFault> ReadCsv(std::string_view text, std::string_view fileName, std::string_view heading,
                                 const CsvRow& row);

} // namespace vesk

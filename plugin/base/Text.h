// Small text helpers shared by all subsystems.
#pragma once

#include "base/Text.h"

#include <string>
#include <string_view>

namespace planfold {

using base::Format;

// As the system's lists compare: letters of the plain alphabet alike in both cases.
bool EqualsIgnoringCase(std::string_view text, std::string_view other);
bool StartsWithIgnoringCase(std::string_view text, std::string_view beginning);

// Cuts one field out of a basket line, starting at `start`: 0, or the position of the "," in front of the
// field. The field ends at ",", line feed, carriage return or the end of the text. Returns where it ended,
// or -1 when it ended at a line feed or `start` is no ",".
int NextCsvField(std::string_view line, int start, std::string_view& field);

} // namespace planfold

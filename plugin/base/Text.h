// Small text helpers shared by all subsystems.
#pragma once

#include "base/Text.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace planfold {

using base::Format;
using base::Joined;
using base::Trimmed;

// A value for each field of a record.
template <class Field, class Value>
class ByField {
public:
    Value& operator[](Field field) { return m_values[static_cast<std::size_t>(field)]; }
    const Value& operator[](Field field) const { return m_values[static_cast<std::size_t>(field)]; }

    // In the order of the fields.
    auto begin() { return m_values.begin(); }
    auto end() { return m_values.end(); }
    auto begin() const { return m_values.begin(); }
    auto end() const { return m_values.end(); }

private:
    std::array<Value, static_cast<std::size_t>(Field::count)> m_values{};
};

// They compare as the system's lists do: letters of the plain alphabet are alike in both cases.
bool EqualsIgnoringCase(std::string_view text, std::string_view other);
bool StartsWithIgnoringCase(std::string_view text, std::string_view beginning);

// Cuts one field out of a basket line, starting at `start`: 0, or the position of the "," in front of the
// field. The field ends at ",", line feed, carriage return or the end of the text. Returns where it ended,
// or -1 when it ended at a line feed or `start` is no ",".
int NextCsvField(std::string_view line, int start, std::string_view& field);

} // namespace planfold

// Where the list's cells come from.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace korvex {

// The cells of records in one column; they hold until the record changes.
class CellSource {
public:
    virtual void Cells(std::span<const std::uint32_t> records, std::int32_t column,
                       std::string_view* texts) = 0;

    std::string_view Cell(std::uint32_t record, std::int32_t column) {
        std::string_view text;
        Cells({&record, 1}, column, &text);
        return text;
    }

protected:
    ~CellSource() = default;
};

// Cells are asked for in pieces of this size: one call for many, and the views stay in the cache.
inline constexpr std::size_t kBatch = 1024;

} // namespace korvex

// A table as a file has it, row by row, whatever the file's format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace planfold {

// What a file may take of memory and time.
inline constexpr std::size_t kLargestTextFile = 512u << 20; // bytes
inline constexpr std::size_t kLargestWorkbook = 128u << 20;
inline constexpr std::size_t kLargestPart = 1u << 30;     // of a workbook, unpacked
inline constexpr std::size_t kLargestShared = 128u << 20; // texts that cells share
inline constexpr std::size_t kLongestRow = 64u << 10;     // characters
inline constexpr std::size_t kMostTableColumns = 256;
inline constexpr int kMostTableRows = 2'000'000;

enum class CellKind : std::uint8_t {
    text,   // as somebody or another program wrote it
    number, // of a workbook: all digits that it keeps, without grouping
    date,   // of a workbook: yyyy-mm-dd
};

struct TableCell {
    std::string_view text{};
    CellKind kind = CellKind::text;
};

struct TableRow {
    int line = 0; // from 1, as an editor or a spreadsheet numbers it
    std::vector<TableCell> cells;
    const char* fault = nullptr; // why the row cannot be read; then it has no cells

    // Empty rows separate and decorate; nobody means an order by them.
    bool IsBlank() const;
};

class TableReader {
public:
    virtual ~TableReader() = default;

    // The next row, whose texts live until the one after it. False at the end, and when Fault says why it ends
    // early.
    virtual bool Next(TableRow& row) = 0;
    virtual const std::string& Fault() const = 0;
    // How far it has come, of Total.
    virtual std::size_t Done() const = 0;
    virtual std::size_t Total() const = 0;
};

// The reader, or why there is none.
using OpenedTable = std::variant<std::unique_ptr<TableReader>, std::string>;

// `bytes` is the whole file, and outlives the reader.
OpenedTable OpenTable(std::string_view bytes);

} // namespace planfold

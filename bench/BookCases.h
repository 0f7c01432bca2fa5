// What is measured of the registration book.
#pragma once

#include "bench/Rounds.h"

namespace bench {

// A name as the ratios use it: "find" and 1,000 is "find-1000".
inline std::string Sized(const char* name, std::uint32_t rows) {
    return name + ("-" + std::to_string(rows));
}

// Looking a record up by number, and changing six texts of one, in any order. Beside them, but with so many
// records that it matters, their peers.
std::vector<Case> RecordCases(std::uint32_t records, bool peers);
// A received message to a record that is there already or new, through the book's rules to the list: as it is,
// with a filter on, and sorted.
std::vector<Case> StreamCases(std::uint32_t rows);
// An empty book, and its peer, take this many answers to the query; a unit is one.
std::vector<Case> FillCases(std::uint32_t rows);

// Bytes of the heap that one record takes with its index, and a row of the list.
std::vector<Result> RecordBytes(std::uint32_t records);
std::vector<Result> RowBytes(std::uint32_t rows);

} // namespace bench

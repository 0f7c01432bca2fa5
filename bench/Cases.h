// What is measured.
#pragma once

#include "bench/Rounds.h"

namespace bench {

// About what an order's values take with tags and lengths packed; our message of it has 478 bytes.
inline constexpr std::size_t kFloorBytes = 219;

// memcpy of kFloorBytes; an order's 22 fields built and read by the connection library and by its peers.
std::vector<Case> MessageCases();
// One order from the filled form to the request control, with a host whose callbacks do nothing.
Case SubmitCase();

// Of the registration book. A name as the ratios use it: "find" and 1,000 is "find-1000".
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

// Of basket files. A basket of so many lines: loaded completely, with one bad line in twenty, only cut, and
// written again. Beside it, when asked for, its peers.
std::vector<Case> BasketCases(std::uint32_t lines, bool peers);

// The same basket behind its window, where rows have serial numbers, totals and marks: loaded, written, placed
// with a host that does nothing, and answered.
std::vector<Case> BasketRowCases(std::uint32_t lines);

// Bytes of the heap that one row takes, by itself and behind the window.
double BytesOfARow(std::uint32_t lines);
double BytesOfAStoredRow(std::uint32_t lines);

} // namespace bench

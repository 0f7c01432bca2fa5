// When the instalments of a registration fall due, and how a date stands in a record.
//
// Thread: any; pure functions.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vesk {

// Whether the server knows to count in this frequency.
bool IsKnownFrequency(std::string_view frequency);

// The date of instalment `index`, from 0. A month without the day takes its last one. A frequency that is
// not known counts as daily.
std::chrono::year_month_day InstalmentDate(std::chrono::year_month_day start, std::string_view frequency,
                                           int index);

// "05-Mar-2027"
std::string RecordDate(std::chrono::year_month_day date);

} // namespace vesk

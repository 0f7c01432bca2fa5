// When the instalments of a registration fall due, and how dates and numbers stand in texts.
//
// Thread: any; pure functions.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

// Whether the server knows to count in this frequency.
bool IsKnownFrequency(std::string_view frequency);

// The date of instalment `index`, from 0; what is below lies before the start. A month without the day takes
// its last one. A frequency that is not known counts as daily.
std::chrono::year_month_day InstalmentDate(std::chrono::year_month_day start, std::string_view frequency,
                                           int index);

// How many instalments fall due before `day`.
int InstalmentsBefore(std::chrono::year_month_day start, std::string_view frequency,
                      std::chrono::year_month_day day);

// "05-Mar-2027", and back; nothing when that is no date.
std::string RecordDate(std::chrono::year_month_day date);
std::optional<std::chrono::year_month_day> ParseRecordDate(std::string_view text);

// 20270305, and back.
std::uint32_t DateNumber(std::chrono::year_month_day date);
std::chrono::year_month_day DateOf(std::uint32_t number);

// "SIP2703050000012": the `sequence`th that was entered, at this date.
std::string DatedNumber(std::string_view prefix, std::chrono::year_month_day date, std::size_t sequence);
// The sequence of a number with a prefix of so many characters; 0 when it has none.
std::size_t SequenceIn(std::string_view number, std::size_t prefix);

// Digits only, within 64 bits.
std::optional<std::int64_t> WholeNumber(std::string_view text);

} // namespace vesk

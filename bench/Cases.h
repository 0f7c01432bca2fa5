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

// Ends the program when a case did not do its work.
void Require(bool worked, const char* what);

} // namespace bench

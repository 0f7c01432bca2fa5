// A dealer's terminal as a process of its own, to be killed. It works as fast as the answers come, and says
// down its standard output, a line each, what it asks and what it is told:
//
//   p ID                     asks for an order
//   P ID NUMBER              that is registered
//   c NUMBER STATUS AMOUNT   asks for a change, behind which the registration is so
//   C NUMBER done|refused    what became of it
//   s NUMBER STATUS NEXT     hears by the stream how a registration is, the day as yyyymmdd
//   o NUMBER ORDER           sees an exchange order
//   q                        asks no more, was told everything, and no instalment is due
//
// A byte on its standard input tells it to ask no more; the end of it ends it.
#pragma once

#include <cstdint>
#include <string>

namespace vesk {

// Its orders have identifiers that begin with `name`, and end with a digit.
int RunDealer(std::uint16_t port, const std::string& login, const std::string& name, unsigned seed);

} // namespace vesk

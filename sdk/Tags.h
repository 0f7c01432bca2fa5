// The field tags of requests, answers and stream messages: the one list, for the plug-in, for a server, and for
// every program that reads a message. All values are text without a closing zero.
//
// Units: an amount is in paise and whole ("150000" is Rs 1,500.00); a price is in scaled units of its scrip
// (hundredths of a rupee unless the scrip's details say otherwise); a quantity is in shares; a date is as said
// at each tag. Failure: a field that has nothing to say is absent, or there without characters; both read as an
// empty text.
//
// Example, the first field of every request (`Qmx.h`):
//
//     const QmxDatum name{"om_get_sip_orders", 17};
//     qmx_add_data(message, tag::requestName, 1, &name, &error);
#pragma once

#include <cstdint>

namespace tag {

using Tag = std::uint32_t;

// What a message is.
inline constexpr Tag requestName = 0;       // the first field of every request: "add_sip_orders"
inline constexpr Tag echoedRequest = 32767; // in an answer, the name of its request
inline constexpr Tag errorCode = 32766;     // in an answer, decimal; without characters it ends a list
inline constexpr Tag echoedNumber = 32760;  // comes back as it was sent: a basket row's serial number
inline constexpr Tag userText = 20008;      // a text for the user; in a cancellation, its reason
inline constexpr Tag noRowText = 49166;     // of an answer that is no row
inline constexpr Tag queriedRow = 54324;    // in an answer to om_get_sip_orders that is a row: its position
inline constexpr Tag streamName = 54211;    // in a subscription, what is to be streamed: "PLANFOLD"

// Who: a request carries the login, and the identity that the login mode asks for.
inline constexpr Tag loginId = 31003;      // of the user at the terminal: "DEALER01"
inline constexpr Tag peerIdA = 64056;      // the broker, as the host gives it
inline constexpr Tag peerIdB = 64053;      // the branch, as the host gives it
inline constexpr Tag account = 54001;      // the client that the order is for: "CL100"
inline constexpr Tag customerFirm = 54056; // always "C"
inline constexpr Tag cancelledBy = 49281;  // the login that cancelled
inline constexpr Tag orderSource = 64756;  // the kind of program that sent it: "TWS"
inline constexpr Tag location = 61117;     // of a basket's order: "1"

// Which scrip.
inline constexpr Tag exchange = 63001;      // segment code: "nse_cm", "bse_cm"
inline constexpr Tag token = 10100;         // decimal, of the exchange
inline constexpr Tag tradingSymbol = 63100; // "BASALTAGRO-EQ"
inline constexpr Tag product = 64030;       // "CNC"

// What is ordered.
inline constexpr Tag side = 12003;             // "B" buys, "S" sells
inline constexpr Tag orderType = 12008;        // "MKT"
inline constexpr Tag validity = 12005;         // "DAY"
inline constexpr Tag investType = 54152;       // "value": by amount; "qty": by quantity
inline constexpr Tag amountOrQuantity = 53063; // paise of each instalment by value, shares by quantity
inline constexpr Tag frequency = 10012;        // "daily", "weekly", "monthly", "yearly"
inline constexpr Tag minimumPeriods = 54101;   // decimal; the least of the frequency at the same index
inline constexpr Tag totalPeriod = 63415;      // decimal; the number of instalments
inline constexpr Tag operationMode = 63715;    // decimal; 1 where the server gave least periods, else absent
inline constexpr Tag cautionaryFlag = 53405;   // "Y" the user confirmed a cautionary scrip, "N" there was none
inline constexpr Tag orderId = 54158; // a unique identifier from the host, by which an order is known again

// A registration.
inline constexpr Tag registrationNumber = 64804; // "SIP2611210000001"
inline constexpr Tag sipStatus = 10303;          // "active", "Paused", "cancelled", "expired"
inline constexpr Tag registrationDate = 54270;   // dd-Mmm-yyyy
inline constexpr Tag startDate =
    49165; // in a request seconds since 1970 of the local midnight; else dd-Mmm-yyyy
inline constexpr Tag nextExecutionDate = 10615; // dd-Mmm-yyyy
inline constexpr Tag endDate = 64987;           // dd-Mmm-yyyy
inline constexpr Tag cancelledDate = 10320;     // dd-Mmm-yyyy
inline constexpr Tag toDate = 79;               // of a query: month/day/year

// An exchange order of a registration, and its trades.
inline constexpr Tag orderNumber = 64001;    // the exchange's
inline constexpr Tag placementTime = 64658;  // dd-Mmm-yyyy hh:mm:ss
inline constexpr Tag price = 10306;          // scaled units
inline constexpr Tag quantity = 12004;       // shares
inline constexpr Tag tradedQuantity = 10076; // shares
inline constexpr Tag tradedPrice = 10307;    // scaled units
inline constexpr Tag fillDetailA = 10310;    // the time of the trade, as it is shown
inline constexpr Tag fillDetailB = 10309;    // the date of the trade, as it is shown

// Restricted dates: the days of a month, from startDate to restrictedTo, in decimal.
inline constexpr Tag restrictedYear = 46000; // four digits
inline constexpr Tag restrictedTo = 63025;   // day of the month

} // namespace tag

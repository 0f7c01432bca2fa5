// The field tags of requests, answers and stream messages.
#pragma once

#include <cstdint>

namespace planfold::tag {

inline constexpr std::uint32_t requestName = 0;
inline constexpr std::uint32_t toDate = 79;
inline constexpr std::uint32_t frequency = 10012;
inline constexpr std::uint32_t tradedQuantity = 10076;
inline constexpr std::uint32_t token = 10100;
inline constexpr std::uint32_t sipStatus = 10303;
inline constexpr std::uint32_t price = 10306;
inline constexpr std::uint32_t tradedPrice = 10307;
inline constexpr std::uint32_t fillDetailB = 10309;
inline constexpr std::uint32_t fillDetailA = 10310;
inline constexpr std::uint32_t cancelledDate = 10320;
inline constexpr std::uint32_t nextExecutionDate = 10615;
inline constexpr std::uint32_t side = 12003;
inline constexpr std::uint32_t quantity = 12004;
inline constexpr std::uint32_t validity = 12005;
inline constexpr std::uint32_t orderType = 12008;
inline constexpr std::uint32_t userText = 20008;
inline constexpr std::uint32_t loginId = 31003;
inline constexpr std::uint32_t echoedNumber = 32760; // comes back as it was sent
inline constexpr std::uint32_t errorCode = 32766;
inline constexpr std::uint32_t echoedRequest = 32767;
inline constexpr std::uint32_t restrictedYear = 46000;
inline constexpr std::uint32_t startDate = 49165;
inline constexpr std::uint32_t noRowText = 49166; // of an answer that is no row
inline constexpr std::uint32_t cancelledBy = 49281;
inline constexpr std::uint32_t amountOrQuantity = 53063;
inline constexpr std::uint32_t cautionaryFlag = 53405;
inline constexpr std::uint32_t account = 54001;
inline constexpr std::uint32_t customerFirm = 54056;
inline constexpr std::uint32_t minimumPeriods = 54101;
inline constexpr std::uint32_t investType = 54152;
inline constexpr std::uint32_t orderId = 54158;
inline constexpr std::uint32_t streamName = 54211;
inline constexpr std::uint32_t registrationDate = 54270;
inline constexpr std::uint32_t queriedRow = 54324; // in answers to om_get_sip_orders that are rows
inline constexpr std::uint32_t location = 61117;
inline constexpr std::uint32_t exchange = 63001;
inline constexpr std::uint32_t restrictedTo = 63025;
inline constexpr std::uint32_t tradingSymbol = 63100;
inline constexpr std::uint32_t totalPeriod = 63415;
inline constexpr std::uint32_t operationMode = 63715;
inline constexpr std::uint32_t orderNumber = 64001;
inline constexpr std::uint32_t product = 64030;
inline constexpr std::uint32_t peerIdB = 64053;
inline constexpr std::uint32_t peerIdA = 64056;
inline constexpr std::uint32_t placementTime = 64658;
inline constexpr std::uint32_t orderSource = 64756;
inline constexpr std::uint32_t registrationNumber = 64804;
inline constexpr std::uint32_t endDate = 64987;

} // namespace planfold::tag

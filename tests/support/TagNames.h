// The field tags by name, as tests write and read them; here alone their numbers are written down a second
// time.
#pragma once

#include "sdk/Tags.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace planfold::test {

inline constexpr std::pair<std::uint32_t, std::string_view> kTagNames[] = {
    {0, "requestName"},
    {32767, "echoedRequest"},
    {32766, "errorCode"},
    {32760, "echoedNumber"},
    {20008, "userText"},
    {49166, "noRowText"},
    {54324, "queriedRow"},
    {54211, "streamName"},
    {31003, "loginId"},
    {64056, "peerIdA"},
    {64053, "peerIdB"},
    {54001, "account"},
    {54056, "customerFirm"},
    {49281, "cancelledBy"},
    {64756, "orderSource"},
    {61117, "location"},
    {63001, "exchange"},
    {10100, "token"},
    {63100, "tradingSymbol"},
    {64030, "product"},
    {12003, "side"},
    {12008, "orderType"},
    {12005, "validity"},
    {54152, "investType"},
    {53063, "amountOrQuantity"},
    {10012, "frequency"},
    {54101, "minimumPeriods"},
    {63415, "totalPeriod"},
    {63715, "operationMode"},
    {53405, "cautionaryFlag"},
    {54158, "orderId"},
    {64804, "registrationNumber"},
    {10303, "sipStatus"},
    {54270, "registrationDate"},
    {49165, "startDate"},
    {10615, "nextExecutionDate"},
    {64987, "endDate"},
    {10320, "cancelledDate"},
    {79, "toDate"},
    {64001, "orderNumber"},
    {64658, "placementTime"},
    {10306, "price"},
    {12004, "quantity"},
    {10076, "tradedQuantity"},
    {10307, "tradedPrice"},
    {10310, "fillDetailA"},
    {10309, "fillDetailB"},
    {46000, "restrictedYear"},
    {63025, "restrictedTo"},
};

// A dumped message with names for numbers and its own first: "add_sip_orders exchange=nse_cm token=1013".
inline std::string Named(const std::string& dump) {
    std::string named;
    for (std::size_t at = 0; at < dump.size();) {
        const std::size_t space = std::min(dump.find(' ', at), dump.size() - 1) + 1;
        const std::string word = dump.substr(at, space - at);
        const std::size_t digits = std::min(word.find_first_not_of("0123456789"), word.size());
        const auto* row = std::ranges::find_if(kTagNames, [&](const auto& each) {
            return digits < word.size() && word[digits] == '='
                   && std::to_string(each.first) == word.substr(0, digits);
        });
        if (row == std::end(kTagNames))
            named += word;
        else
            named += row->first == tag::requestName ? word.substr(digits + 1)
                                                    : std::string(row->second) + word.substr(digits);
        at = space;
    }
    return named;
}

// 0 for no name of a tag.
inline std::uint32_t TagNamed(std::string_view name) {
    const auto* row = std::ranges::find(kTagNames, name, &std::pair<std::uint32_t, std::string_view>::second);
    return row == std::end(kTagNames) ? 0 : row->first;
}

} // namespace planfold::test

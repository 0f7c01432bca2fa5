// Requests to the trading server, written as text, and a clock for it that stands still.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/Clockwork.h"
#include "tests/support/TagNames.h"

#include <map>
#include <sstream>
#include <string>

namespace vesk {

// 2026-03-02 00:00 UTC, and days counted in UTC.
inline constexpr std::int64_t kToday = 1772409600;

inline ServerClock FixedClock() {
    return {[] { return kToday; },
            [](std::int64_t seconds) {
                return std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(
                    std::chrono::sys_seconds(std::chrono::seconds(seconds))));
            }};
}

// Texts by tag. "pause_sip_order registrationNumber=SIP1": a request's name, and fields by theirs; divided by
// bars where there is one, so that a text may have blanks.
struct Fields : std::map<std::uint32_t, std::string> {
    using map::map;
    Fields(const std::string& text) {
        std::istringstream words(text);
        const char divider = text.find('|') == text.npos ? ' ' : '|';
        for (std::string word; std::getline(words, word, divider);) {
            const std::size_t equals = word.find('=');
            if (equals == word.npos)
                (*this)[tag::requestName] = word;
            else
                (*this)[planfold::test::TagNamed(word.substr(0, equals))] = word.substr(equals + 1);
        }
    }
    Fields(const char* text) : Fields(std::string(text)) {}
};

// An order that the server accepts, with some fields set otherwise.
inline Fields Order(Fields changes = {}) {
    changes.merge(Fields(
        "add_sip_orders exchange=nse_cm token=1013 tradingSymbol=ALPHA-EQ side=B orderType=MKT product=CNC "
        "investType=value amountOrQuantity=123450 frequency=monthly startDate=1772755200 totalPeriod=12 "
        "loginId=USER1 customerFirm=C account=CL1 validity=DAY peerIdA=BROKER peerIdB= orderId=id-1 "
        "operationMode=1 orderSource=TWS"));
    return changes;
}

inline std::string Message(const Fields& fields) {
    qmx::MessageWriter writer;
    for (const auto& [tag, text] : fields)
        writer.Add(tag, text);
    return writer.Finish();
}

} // namespace vesk

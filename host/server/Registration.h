// One SIP registration as the server holds it: the wire texts of its record by tag.
//
// Thread: any; plain values.
#pragma once

#include "host/connectvesk/QmxHost.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vesk {

// Tags of requests, answers and records.
enum Tag : std::uint32_t {
    kTagRequestName = 0,
    kTagToken = 10100,
    kTagFrequency = 10012,
    kTagStatus = 10303,
    kTagNextExecution = 10615,
    kTagValidity = 12005,
    kTagSide = 12003,
    kTagOrderType = 12008,
    kTagUserText = 20008,
    kTagUser = 31003,
    kTagErrorCode = 32766,
    kTagAnswerName = 32767,
    kTagStartDate = 49165,
    kTagAmountOrQuantity = 53063,
    kTagCautionary = 53405,
    kTagAccount = 54001,
    kTagFirm = 54056,
    kTagMinimumPeriods = 54101,
    kTagInvestType = 54152,
    kTagRequestIdentifier = 54158,
    kTagStream = 54211,
    kTagRegistrationDate = 54270,
    kTagExchange = 63001,
    kTagTradingSymbol = 63100,
    kTagPeriods = 63415,
    kTagOperationMode = 63715,
    kTagProduct = 64030,
    kTagBranch = 64053,
    kTagBroker = 64056,
    kTagOrderSource = 64756,
    kTagRegistrationNumber = 64804,
    kTagEndDate = 64987,
};

class Registration {
public:
    // Empty when the record has no such field.
    std::string_view Text(std::uint32_t tag) const;
    void Set(std::uint32_t tag, std::string_view text);
    std::string_view Number() const { return Text(kTagRegistrationNumber); }

    // The update message of the whole record.
    std::string Message(qmx::MessageWriter& writer) const;

    // The journal's form and back; nothing when the text is not a record with a registration number.
    std::string Json() const;
    static std::optional<Registration> FromJson(std::string_view text);

private:
    std::map<std::uint32_t, std::string> m_fields;
};

} // namespace vesk

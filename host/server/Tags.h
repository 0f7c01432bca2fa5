// The field tags of requests, answers and records.
#pragma once

#include <cstdint>

namespace vesk {

enum Tag : std::uint32_t {
    kTagRequestName = 0,
    kTagToDate = 79,
    kTagFrequency = 10012,
    kTagTradedQuantity = 10076,
    kTagToken = 10100,
    kTagStatus = 10303,
    kTagPrice = 10306,
    kTagTradedPrice = 10307,
    kTagFillDate = 10309,
    kTagFillTime = 10310,
    kTagCancelledDate = 10320,
    kTagNextExecution = 10615,
    kTagSide = 12003,
    kTagQuantity = 12004,
    kTagValidity = 12005,
    kTagOrderType = 12008,
    kTagUserText = 20008,
    kTagUser = 31003,
    kTagEchoed = 32760,
    kTagErrorCode = 32766,
    kTagAnswerName = 32767,
    kTagYear = 46000,
    kTagStartDate = 49165,
    kTagNoMoreData = 49166,
    kTagCancelledBy = 49281,
    kTagAmountOrQuantity = 53063,
    kTagCautionary = 53405,
    kTagAccount = 54001,
    kTagFirm = 54056,
    kTagMinimumPeriods = 54101,
    kTagInvestType = 54152,
    kTagRequestIdentifier = 54158,
    kTagStream = 54211,
    kTagRegistrationDate = 54270,
    kTagListRow = 54324,
    kTagExchange = 63001,
    kTagToDay = 63025,
    kTagTradingSymbol = 63100,
    kTagPeriods = 63415,
    kTagOperationMode = 63715,
    kTagOrderNumber = 64001,
    kTagProduct = 64030,
    kTagBranch = 64053,
    kTagBroker = 64056,
    kTagPlacedAt = 64658,
    kTagOrderSource = 64756,
    kTagRegistrationNumber = 64804,
    kTagEndDate = 64987,
};

} // namespace vesk

#include "plugin/orderentry/ModifyOrder.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/Request.h"
#include "sdk/Tags.h"

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

struct ModifySipOrder {
    std::string number;
    const sSipOrderData& order;
};
constexpr RequestField<ModifySipOrder> kFields[] = {
    {tag::registrationNumber, [](ModifySipOrder& modify) -> Value { return modify.number; },
     "Failed to add the SIP ID"},
    {tag::amountOrQuantity, [](ModifySipOrder& modify) -> Value { return modify.order.amountOrQuantity; },
     "Failed to add Amount or Quantity"},
    {tag::totalPeriod, [](ModifySipOrder& modify) -> Value { return modify.order.totalPeriod; },
     "Failed to add the Total Period"},
};
constexpr Request<ModifySipOrder> kRequest{"modify_sip_order", "Failed to add the request modify_sip_order",
                                           kFields, "Sending Request modify_sip_order Failed"};

} // namespace

SymbolAndSeries SplitTradingSymbol(std::string_view tradingSymbol) {
    const std::size_t dash = tradingSymbol.rfind('-');
    if (dash == tradingSymbol.npos) return {std::string(tradingSymbol), {}};
    return {std::string(tradingSymbol.substr(0, dash)), std::string(tradingSymbol.substr(dash + 1))};
}

std::optional<LocalDateTime> ReadServerDate(std::string_view text) {
    const std::size_t month = text.find('-');
    const std::size_t year = text.find('-', month == text.npos ? month : month + 1);
    if (year == text.npos) return std::nullopt;
    const int number = MonthNumber(text.substr(month + 1, year - month - 1));
    if (number == 0) return std::nullopt;
    return LocalDateTime{static_cast<int>(LeadingInteger(text.substr(year + 1))), number,
                         static_cast<int>(LeadingInteger(text))};
}

bool SendModifySipOrder(Pass pass, Session& session, RxControl* control, Notices& notices,
                        std::string_view number, const sSipOrderData& order) {
    ModifySipOrder modify{std::string(number), order};
    if (!SendRequest(pass, session, control, notices, kRequest, modify)) return false;
    session.Log(pass, Format("Request sent Modify SIP Order: %s", modify.number.c_str()));
    return true;
}

} // namespace planfold

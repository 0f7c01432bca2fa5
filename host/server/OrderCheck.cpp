#include "host/server/OrderCheck.h"

#include "host/connectvesk/QmxHost.h"
#include "host/server/Registration.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

enum class Form { text, code, number, positive, date };

// Beyond the year 2100 no calendar of a platform is relied on.
constexpr std::int64_t kLatestDate = 4'102'444'800;

struct FieldRule {
    std::uint32_t tag;
    const char* name;
    Form form;
    std::string_view codes; // of a code: those allowed, each between blanks
};

constexpr FieldRule kNeeded[] = {
    {tag::exchange, "exchange segment", Form::code, " bse_cm nse_cm "},
    {tag::token, "token", Form::text, {}},
    {tag::tradingSymbol, "trading symbol", Form::text, {}},
    {tag::side, "side", Form::code, " B S "},
    {tag::orderType, "order type", Form::code, " MKT "},
    {tag::product, "product", Form::text, {}},
    {tag::investType, "invest type", Form::code, " value qty "},
    {tag::amountOrQuantity, "amount or quantity", Form::positive, {}},
    {tag::frequency, "frequency", Form::text, {}},
    {tag::startDate, "start date", Form::date, {}},
    {tag::totalPeriod, "total period", Form::positive, {}},
    {tag::loginId, "user", Form::text, {}},
    {tag::customerFirm, "customer firm", Form::code, " C "},
    {tag::account, "account", Form::text, {}},
    {tag::validity, "validity", Form::code, " DAY "},
    {tag::orderSource, "order source", Form::text, {}},
};
constexpr FieldRule kOptional[] = {
    {tag::cautionaryFlag, "cautionary flag", Form::code, " Y N "},
    {tag::operationMode, "operation mode", Form::number, {}},
    {tag::peerIdA, "broker", Form::text, {}},
    {tag::peerIdB, "branch", Form::text, {}},
    {tag::orderId, "request identifier", Form::text, {}},
};

bool IsListed(std::string_view code, std::string_view codes) {
    if (code.find(' ') != code.npos) return false;
    const std::string framed = " " + std::string(code) + " ";
    return codes.find(framed) != codes.npos;
}

bool Fits(const FieldRule& rule, std::string_view text) {
    switch (rule.form) {
    case Form::text:
        return true;
    case Form::code:
        return IsListed(text, rule.codes);
    case Form::number:
        return WholeNumber(text).has_value();
    case Form::positive:
        return WholeNumber(text).value_or(0) > 0;
    case Form::date:
        return WholeNumber(text).value_or(kLatestDate) < kLatestDate;
    }
    return false;
}

std::optional<Refusal> JudgeField(void* request, const FieldRule& rule, bool needed) {
    const std::string_view text = qmx::Text(request, rule.tag);
    if (text.empty()) return needed ? std::optional(MissingField(rule.name)) : std::nullopt;
    if (text.size() <= kLongestText && Fits(rule, text)) return std::nullopt;
    return WrongValue(rule.name, text);
}

} // namespace

std::optional<Refusal> JudgePeriods(std::string_view frequency, std::int64_t periods,
                                    const ServerConfig& config) {
    constexpr std::int64_t mostWithoutList = 60;
    const bool hasList = !config.frequencies.empty() && config.operationModeShape == OperationModeShape::list;
    std::int64_t least = 1;
    bool allowed = !hasList && (frequency == "daily" || frequency == "weekly" || frequency == "monthly");
    for (const Frequency& row : config.frequencies) {
        if (row.name != frequency) continue;
        allowed = true;
        if (hasList) least = row.minimumPeriods.value_or(1);
    }
    if (!allowed || !IsKnownFrequency(frequency))
        return Refusal{kCodeFrequency, "The frequency \"" + std::string(frequency) + "\" is not offered"};
    if (periods < least)
        return Refusal{kCodePeriods, "The total period must be at least " + std::to_string(least)};
    const std::int64_t most = hasList ? kMostPeriods : mostWithoutList;
    if (periods > most)
        return Refusal{kCodePeriods, "The total period must not exceed " + std::to_string(most)};
    return std::nullopt;
}

std::optional<Refusal> JudgeOrder(void* request, std::string_view loginId, const ServerConfig& config) {
    for (const FieldRule& rule : kNeeded)
        if (auto refusal = JudgeField(request, rule, true)) return refusal;
    for (const FieldRule& rule : kOptional)
        if (auto refusal = JudgeField(request, rule, false)) return refusal;
    if (qmx::Text(request, tag::loginId) != loginId) return WrongUser();
    return JudgePeriods(qmx::Text(request, tag::frequency),
                        WholeNumber(qmx::Text(request, tag::totalPeriod)).value_or(0), config);
}

} // namespace vesk

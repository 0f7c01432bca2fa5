#include "host/server/OrderRules.h"

#include "host/connectvesk/QmxHost.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <iterator>

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

std::optional<ServerRefusal> JudgeField(void* request, const FieldRule& rule, bool needed) {
    const std::string_view text = qmx::Text(request, rule.tag);
    if (text.empty()) return needed ? std::optional(MissingField(rule.name)) : std::nullopt;
    if (text.size() <= kLongestText && Fits(rule, text)) return std::nullopt;
    return WrongValue(rule.name, text);
}

} // namespace

std::optional<ServerRefusal> JudgePeriods(std::string_view frequency, std::int64_t periods,
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
        return ServerRefusal{kCodeFrequency, "The frequency \"" + std::string(frequency) + "\" is not offered"};
    if (periods < least)
        return ServerRefusal{kCodePeriods, "The total period must be at least " + std::to_string(least)};
    const std::int64_t most = hasList ? kMostPeriods : mostWithoutList;
    if (periods > most)
        return ServerRefusal{kCodePeriods, "The total period must not exceed " + std::to_string(most)};
    return std::nullopt;
}

std::optional<ServerRefusal> JudgeOrder(void* request, const UserIdentity& user, const ServerConfig& config) {
    for (const FieldRule& rule : kNeeded)
        if (auto refusal = JudgeField(request, rule, true)) return refusal;
    for (const FieldRule& rule : kOptional)
        if (auto refusal = JudgeField(request, rule, false)) return refusal;
    for (const IdentityField& field : kIdentityFields)
        if (NamesAnother(field.tag, qmx::Text(request, field.tag), user)) return WrongUser();
    return JudgePeriods(qmx::Text(request, tag::frequency),
                        WholeNumber(qmx::Text(request, tag::totalPeriod)).value_or(0), config);
}

namespace {

std::optional<ServerRefusal> JudgeStatus(const Registration& registration) {
    const std::string_view status = registration.Text(tag::sipStatus);
    if (status != kStatusCancelled && status != kStatusExpired) return std::nullopt;
    return ServerRefusal{kCodeStatus, "The registration is " + std::string(status)};
}

std::optional<ServerRefusal> ReadPositive(void* message, std::uint32_t tag, const char* name,
                                          std::int64_t& number) {
    const std::string_view text = qmx::Text(message, tag);
    if (text.empty()) return MissingField(name);
    number = WholeNumber(text).value_or(0);
    if (number <= 0) return WrongValue(name, text);
    return std::nullopt;
}

void SetEnd(Registration& registration) {
    if (const auto plan = registration.Plan())
        registration.Set(tag::endDate, RecordDate(LastDueDate(*plan, registration.progress)));
}

std::optional<ServerRefusal> Modify(const ChangeRequest& request, Registration& registration) {
    std::int64_t value = 0;
    std::int64_t periods = 0;
    const std::string frequency(registration.Text(tag::frequency));
    if (auto refusal = JudgeStatus(registration)) return refusal;
    if (auto refusal = ReadPositive(request.message, tag::amountOrQuantity, "amount or quantity", value))
        return refusal;
    if (auto refusal = ReadPositive(request.message, tag::totalPeriod, "total period", periods)) return refusal;
    if (auto refusal = JudgePeriods(frequency, periods, request.config)) return refusal;
    if (const int executed = registration.progress.executed; periods <= executed)
        return ServerRefusal{kCodePeriods, "The total period must exceed the " + std::to_string(executed)
                                               + " that are executed"};
    registration.Set(tag::amountOrQuantity, std::to_string(value));
    registration.Set(tag::totalPeriod, std::to_string(periods));
    SetEnd(registration);
    return std::nullopt;
}

std::optional<ServerRefusal> Cancel(const ChangeRequest& request, Registration& registration) {
    const std::string_view orderId = qmx::Text(request.message, tag::orderId);
    const std::string_view by = qmx::Text(request.message, tag::cancelledBy);
    const std::string_view remarks = qmx::Text(request.message, tag::userText);
    const bool isCancelled = registration.Text(tag::sipStatus) == kStatusCancelled;
    if (isCancelled && !orderId.empty() && registration.changes.Text(tag::orderId) == orderId) {
        if (registration.Text(tag::userText) == remarks) return std::nullopt;
        return OtherChange();
    }
    if (auto refusal = JudgeStatus(registration)) return refusal;
    if (!by.empty() && by != request.loginId) return WrongUser();
    if (orderId.size() > kLongestText) return WrongValue("request identifier", orderId);
    if (remarks.size() > kLongestText) return WrongValue("remarks", remarks);
    registration.Set(tag::sipStatus, kStatusCancelled);
    registration.Set(tag::userText, remarks);
    registration.Set(tag::cancelledBy, request.loginId);
    registration.Set(tag::cancelledDate, RecordDate(request.today));
    if (!orderId.empty()) registration.changes.Set(tag::orderId, orderId);
    return std::nullopt;
}

std::optional<ServerRefusal> Pause(const ChangeRequest&, Registration& registration) {
    if (auto refusal = JudgeStatus(registration)) return refusal;
    registration.Set(tag::sipStatus, kStatusPaused);
    return std::nullopt;
}

std::optional<ServerRefusal> Resume(const ChangeRequest& request, Registration& registration) {
    if (auto refusal = JudgeStatus(registration)) return refusal;
    const auto plan = registration.Plan();
    if (plan && registration.Text(tag::sipStatus) == kStatusPaused) {
        LapseBefore(request.today, *plan, request.market, registration.progress);
        SetEnd(registration);
    }
    registration.Set(tag::sipStatus, kStatusActive);
    return std::nullopt;
}

constexpr ChangeKind kChangeKinds[] = {
    {"modify_sip_order", "modified", Modify},
    {"cancel_sip_order", "cancelled", Cancel},
    {"pause_sip_order", "paused", Pause},
    {"resume_sip_order", "resumed", Resume},
};

} // namespace

const ChangeKind* FindChange(std::string_view request) {
    const auto found = std::find_if(std::begin(kChangeKinds), std::end(kChangeKinds),
                                    [&](const ChangeKind& row) { return row.request == request; });
    return found == std::end(kChangeKinds) ? nullptr : found;
}

} // namespace vesk

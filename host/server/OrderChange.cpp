#include "host/server/OrderChange.h"

#include "host/server/OrderCheck.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <iterator>

namespace vesk {
namespace {

std::optional<Refusal> JudgeStatus(const Registration& registration) {
    const std::string_view status = registration.Text(tag::sipStatus);
    if (status != kStatusCancelled && status != kStatusExpired) return std::nullopt;
    return Refusal{kCodeStatus, "The registration is " + std::string(status)};
}

std::optional<Refusal> ReadPositive(void* message, std::uint32_t tag, const char* name, std::int64_t& number) {
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

std::optional<Refusal> Modify(const ChangeRequest& request, Registration& registration) {
    std::int64_t value = 0;
    std::int64_t periods = 0;
    const std::string frequency(registration.Text(tag::frequency));
    if (auto refusal = JudgeStatus(registration)) return refusal;
    if (auto refusal = ReadPositive(request.message, tag::amountOrQuantity, "amount or quantity", value))
        return refusal;
    if (auto refusal = ReadPositive(request.message, tag::totalPeriod, "total period", periods)) return refusal;
    if (auto refusal = JudgePeriods(frequency, periods, request.config)) return refusal;
    if (const int executed = registration.progress.executed; periods <= executed)
        return Refusal{kCodePeriods,
                       "The total period must exceed the " + std::to_string(executed) + " that are executed"};
    registration.Set(tag::amountOrQuantity, std::to_string(value));
    registration.Set(tag::totalPeriod, std::to_string(periods));
    SetEnd(registration);
    return std::nullopt;
}

std::optional<Refusal> Cancel(const ChangeRequest& request, Registration& registration) {
    const std::string_view identifier = qmx::Text(request.message, tag::orderId);
    const std::string_view by = qmx::Text(request.message, tag::cancelledBy);
    const std::string_view remarks = qmx::Text(request.message, tag::userText);
    const bool isCancelled = registration.Text(tag::sipStatus) == kStatusCancelled;
    if (isCancelled && !identifier.empty() && registration.Text(tag::orderId) == identifier)
        return std::nullopt;
    if (auto refusal = JudgeStatus(registration)) return refusal;
    if (!by.empty() && by != request.loginId) return WrongUser();
    if (identifier.size() > kLongestText) return WrongValue("request identifier", identifier);
    if (remarks.size() > kLongestText) return WrongValue("remarks", remarks);
    registration.Set(tag::sipStatus, kStatusCancelled);
    registration.Set(tag::userText, remarks);
    registration.Set(tag::cancelledBy, request.loginId);
    registration.Set(tag::cancelledDate, RecordDate(request.today));
    if (!identifier.empty()) registration.Set(tag::orderId, identifier);
    return std::nullopt;
}

std::optional<Refusal> Pause(const ChangeRequest&, Registration& registration) {
    if (auto refusal = JudgeStatus(registration)) return refusal;
    registration.Set(tag::sipStatus, kStatusPaused);
    return std::nullopt;
}

std::optional<Refusal> Resume(const ChangeRequest& request, Registration& registration) {
    if (auto refusal = JudgeStatus(registration)) return refusal;
    const auto plan = registration.Plan();
    if (plan && registration.Text(tag::sipStatus) == kStatusPaused) {
        LapseBefore(request.today, *plan, request.market, registration.progress);
        SetEnd(registration);
    }
    registration.Set(tag::sipStatus, kStatusActive);
    return std::nullopt;
}

constexpr ChangeKind kChanges[] = {
    {"modify_sip_order", "modified", Modify},
    {"cancel_sip_order", "cancelled", Cancel},
    {"pause_sip_order", "paused", Pause},
    {"resume_sip_order", "resumed", Resume},
};

} // namespace

const ChangeKind* FindChange(std::string_view request) {
    const auto found = std::find_if(std::begin(kChanges), std::end(kChanges),
                                    [&](const ChangeKind& row) { return row.request == request; });
    return found == std::end(kChanges) ? nullptr : found;
}

} // namespace vesk

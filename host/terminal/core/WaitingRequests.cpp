#include "host/terminal/core/WaitingRequests.h"

#include "base/Text.h"

#include <utility>

namespace vesk {
namespace {

std::string Value(void* message) {
    std::string text(qmx::Text(message, tag::amountOrQuantity));
    const std::string_view type = qmx::Text(message, tag::investType);
    if (type == "qty") return text;
    const auto paise = type == "value" ? base::ReadNumber<std::int64_t>(text) : std::nullopt;
    constexpr std::int64_t rupee = 100;
    if (!paise || *paise < 0) return {};
    return base::Format("%lld.%02lld", static_cast<long long>(*paise / rupee),
                        static_cast<long long>(*paise % rupee));
}

// The scrip of an order, or the registration that a change is for.
std::string ScripOrRegistration(void* message) {
    const std::string_view symbol = qmx::Text(message, tag::tradingSymbol);
    return std::string(symbol.empty() ? qmx::Text(message, tag::registrationNumber) : symbol);
}

std::string Since(std::int64_t ageMs, int timeOfDay) {
    constexpr std::int64_t minute = 60, hour = 60 * minute, day = 24 * hour;
    const auto then = static_cast<int>(((timeOfDay - ageMs / 1000) % day + day) % day);
    return base::Format("%02d:%02d:%02d", static_cast<int>(then / hour), static_cast<int>(then % hour / minute),
                        static_cast<int>(then % minute));
}

} // namespace

constinit const WaitingHeading kWaitingHeadings[] = {
    {"Request", 135}, {"Client", 70}, {"Scrip / Registration", 150},
    {"Value", 80},    {"Since", 60},  {"State", 110},
};

std::string WaitingCell(const WaitingRequest& request, WaitingColumn column, std::int64_t ageMs,
                        int timeOfDay) {
    const qmx::MessageReader reader(request.bytes);
    void* const message = reader.Handle();
    switch (column) {
    case WaitingColumn::request:
        return std::string(qmx::Text(message, tag::requestName));
    case WaitingColumn::client:
        return std::string(qmx::Text(message, tag::account));
    case WaitingColumn::scrip:
        return ScripOrRegistration(message);
    case WaitingColumn::value:
        return Value(message);
    case WaitingColumn::since:
        return Since(ageMs, timeOfDay);
    case WaitingColumn::state:
        return request.hasLeft ? "sent, no answer" : "not sent";
    case WaitingColumn::count:
        break;
    }
    return {};
}

WaitingCounts CountWaiting(const RxClient& client) {
    WaitingCounts counts;
    for (const std::uint64_t number : client.Requests().Numbers()) {
        const auto request = client.Requests().Find(number);
        ++counts.all;
        if (request && !request->hasLeft) ++counts.unsent;
    }
    return counts;
}

std::string WaitingText(std::size_t requests) {
    return std::to_string(requests) + (requests == 1 ? " request waits" : " requests wait") + " for an answer";
}

std::string LeaveQuestion(const WaitingCounts& counts, const std::string& trouble) {
    return (trouble.empty() ? "" : trouble + ": ") + WaitingText(counts.all)
           + "; not sent yet: " + std::to_string(counts.unsent)
           + ".\n\nYes sends what can be sent, waits a short time for the answers, and leaves. What is not "
             "sent by "
             "then is never done; what is sent and not answered may be done or not.\nNo stays.\n\nLeave?";
}

bool LeaveLimit::IsOver(std::size_t waiting, std::int64_t nowMs) {
    if (std::exchange(m_waiting, waiting) != waiting) m_answeredMs = nowMs;
    return waiting == 0 || nowMs - m_answeredMs >= kQuietMs || nowMs - m_beganMs >= kLongestMs;
}

} // namespace vesk

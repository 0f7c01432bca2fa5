#include "host/server/HubControl.h"

#include "host/server/Refusal.h"

#include <algorithm>
#include <cstdio>

namespace vesk {
namespace {

constexpr std::uint32_t kMostSubscriptionFields = 16;
constexpr std::size_t kMostSubscriptions = 256;

// What a subscription may ask for; the stream's name besides.
constexpr std::uint32_t kSubscriptionTags[] = {
    tag::streamName, tag::registrationNumber, tag::peerIdA, tag::peerIdB, tag::loginId, tag::account,
};

// Fields by which a registration belongs to somebody.
bool IsIdentity(std::uint32_t tag) {
    return tag == tag::loginId || tag == tag::peerIdA || tag == tag::peerIdB;
}

int Fail(QmxError* error, QmxErrorCode code, const char* text) {
    if (!error) return 0;
    error->code = code;
    std::snprintf(error->text, sizeof error->text, "%s", text);
    return 0;
}

int Succeed(QmxError* error) {
    if (error) *error = QmxError{};
    return 1;
}

// What fails is told to the caller, so no line says more.
template <class Body>
auto OrNothing(Body&& body) noexcept -> decltype(body()) {
    try {
        return body();
    } catch (...) {
        return {};
    }
}

} // namespace

bool Matches(const Subscription& subscription, const Registration& registration, std::string_view loginId) {
    return std::ranges::all_of(subscription, [&](const auto& field) {
        const auto& [tag, value] = field;
        if (!value.empty()) return registration.Text(tag) == value;
        return !IsIdentity(tag) || registration.Text(tag::loginId) == loginId;
    });
}

bool HubControl::CanBe(int kind, const CKeloRxNotifierBase* notifier) {
    return notifier && kind >= kRxRequests && kind <= kRxAccountStream;
}

void HubControl::Tell(void* message, bool isStream) {
    if (isStream)
        m_notifier.OnBroadcast(message, 0, nullptr);
    else
        m_notifier.OnResponse(this, message, nullptr);
}

int HubControl::SendRequest(std::uint64_t* requestNumber, void* message, int, QmxError* error) noexcept {
    if (m_kind != kRxRequests) return Fail(error, kQmxBadArgument, "a stream control sends no requests");
    QmxDatum bytes{};
    if (!qmx_message_bytes(message, &bytes, error)) return 0;
    const std::uint64_t number =
        OrNothing([&] { return Queue(qmx::Text(message, tag::requestName), qmx::View(bytes)); });
    if (!number) return Fail(error, kQmxNoMemory, "the request is too long, or too many wait for the server");
    if (requestNumber) *requestNumber = number;
    return Succeed(error);
}

int HubControl::Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values,
                          std::uint32_t count, RxControl* self, int, int, int, QmxError* error) noexcept {
    if (const char* fault = FaultOf(tags, values, count, self)) return Fail(error, kQmxBadArgument, fault);
    const bool isMade = OrNothing([&] {
        Subscription made;
        for (std::uint32_t i = 0; i < count; ++i)
            made.emplace_back(tags[i], qmx::View(values[i]));
        OnSubscribed(made);
        m_subscriptions.push_back(std::move(made));
        return true;
    });
    if (!isMade) return Fail(error, kQmxNoMemory, "no memory for the subscription");
    if (out) *out = m_subscriptions.size();
    return Succeed(error);
}

int HubControl::Stop(int) noexcept {
    m_subscriptions.clear();
    return OrNothing([this] {
        OnStopped();
        return 1;
    });
}

// Null when the subscription may be made.
const char* HubControl::FaultOf(const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                                const RxControl* self) const {
    if (m_kind == kRxRequests) return "a request control has no stream";
    if (self != this) return "the control must name itself";
    if (!tags || !values || count == 0) return "a subscription needs fields";
    if (count > kMostSubscriptionFields) return "a subscription of too many fields";
    if (m_subscriptions.size() == kMostSubscriptions) return "too many subscriptions";
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!values[i].data && values[i].length) return "a null value with a length";
        if (values[i].length > kLongestText) return "a value that no record has";
        if (std::ranges::count(kSubscriptionTags, tags[i]) == 0) return "a field that no stream goes by";
    }
    return nullptr;
}

} // namespace vesk

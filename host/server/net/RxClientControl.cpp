#include "host/server/net/RxClientControl.h"

#include "host/server/net/Streams.h"

#include <cstdio>
#include <utility>

namespace vesk {
namespace {

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

void RxClient::Control::Introduce(bool isRenewed) const {
    m_client.m_connection.Say(net::OpenControl{m_id, static_cast<std::uint32_t>(m_kind)});
    for (const auto& [number, fields] : m_subscriptions)
        m_client.m_connection.Say(net::Subscribe{m_id, number, isRenewed, fields});
}

void RxClient::Control::Tell(void* message, bool isStream) {
    if (isStream)
        m_notifier.OnBroadcast(message, 0, nullptr);
    else
        m_notifier.OnResponse(this, message, nullptr);
}

int RxClient::Control::SendRequest(std::uint64_t* requestNumber, void* message, int, QmxError* error) noexcept {
    if (m_kind != kRxRequests) return Fail(error, kQmxBadArgument, "a stream control sends no requests");
    QmxDatum bytes{};
    if (!qmx_message_bytes(message, &bytes, error)) return 0;
    const std::uint64_t number = OrNothing([&] { return m_client.Send(m_id, qmx::View(bytes)); });
    if (!number) return Fail(error, kQmxNoMemory, "the request is too long, or too many wait for the server");
    if (requestNumber) *requestNumber = number;
    return Succeed(error);
}

int RxClient::Control::Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values,
                                 std::uint32_t count, RxControl* self, int, int, int,
                                 QmxError* error) noexcept {
    const char* fault = FaultOf(tags, values, count, self);
    if (fault) return Fail(error, kQmxBadArgument, fault);
    const bool isMade = OrNothing([&] {
        Subscription made;
        for (std::uint32_t i = 0; i < count; ++i)
            made.emplace_back(tags[i], qmx::View(values[i]));
        fault = vesk::FaultOf(made, m_subscriptions.size());
        if (fault) return false;
        const std::uint64_t number = ++m_client.m_lastSubscription;
        m_client.m_connection.Say(net::Subscribe{m_id, number, false, made});
        m_subscriptions.emplace(number, std::move(made));
        return true;
    });
    if (fault) return Fail(error, kQmxBadArgument, fault);
    if (!isMade) return Fail(error, kQmxNoMemory, "no memory for the subscription");
    if (out) *out = m_subscriptions.size();
    return Succeed(error);
}

int RxClient::Control::Stop(int) noexcept {
    m_subscriptions.clear();
    return OrNothing([this] {
        m_client.m_connection.Say(net::Stop{m_id});
        return 1;
    });
}

// Null when the arguments can be read.
const char* RxClient::Control::FaultOf(const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                                       const RxControl* self) const {
    if (m_kind == kRxRequests) return "a request control has no stream";
    if (self != this) return "the control must name itself";
    if (!tags || !values) return "a subscription needs fields";
    if (count > kMostSubscriptionFields) return "a subscription of too many fields";
    for (std::uint32_t i = 0; i < count; ++i)
        if (!values[i].data && values[i].length) return "a null value with a length";
    return nullptr;
}

} // namespace vesk

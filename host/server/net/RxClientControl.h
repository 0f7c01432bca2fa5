// A request or stream control of a client: what may be asked of it, and what it is subscribed to.
//
// Thread: the client's. Failure: as RxControl says; nothing is thrown.
#pragma once

#include "host/server/net/RxClient.h"

#include <cstddef>
#include <cstdint>
#include <map>

namespace vesk {

class RxClient::Control final : public RxControl {
public:
    Control(RxClient& client, std::uint32_t id, int kind, CKeloRxNotifierBase& notifier)
        : m_client(client), m_id(id), m_kind(kind), m_notifier(notifier) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    ~Control() = default;

    // Tells a server that knows nothing of it what it is and is subscribed to.
    void Introduce(bool isRenewed) const;
    bool IsSubscribed() const { return !m_subscriptions.empty(); }
    // The subscription with the number is refused.
    void Forget(std::uint64_t number) { m_subscriptions.erase(number); }
    // Hands its notifier a message. The notifier may destroy the control.
    void Tell(void* message, bool isStream);

    int SendRequest(std::uint64_t* requestNumber, void* message, int, QmxError* error) noexcept override;
    int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl* self, int, int, int, QmxError* error) noexcept override;
    int Stop(int) noexcept override;
    void Reserved0() noexcept override {}
    void Reserved1() noexcept override {}
    void Reserved2() noexcept override {}
    void Reserved3() noexcept override {}
    void Reserved6() noexcept override {}
    void Reserved7() noexcept override {}
    void Reserved8() noexcept override {}
    void Reserved9() noexcept override {}
    void Reserved10() noexcept override {}
    void Reserved11() noexcept override {}
    void Reserved12() noexcept override {}
    void Reserved13() noexcept override {}
    void Reserved14() noexcept override {}

private:
    const char* FaultOf(const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                        const RxControl* self) const;

    RxClient& m_client;
    const std::uint32_t m_id;
    const int m_kind;
    CKeloRxNotifierBase& m_notifier;
    std::map<std::uint64_t, Subscription> m_subscriptions; // by number
};

} // namespace vesk

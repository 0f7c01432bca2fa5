// A request or stream control of a hub, apart from where the server is: what may be asked of it, and what it is
// subscribed to.
//
// Thread: the hub's. Failure: as RxControl says; nothing is thrown.
#pragma once

#include "host/server/Registration.h"
#include "sdk/RxControl.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

// Fields that a record must have; an empty value stands for any, and of an identity for who is logged in.
using Subscription = std::vector<std::pair<std::uint32_t, std::string>>;
bool Matches(const Subscription& subscription, const Registration& registration, std::string_view loginId);

class HubControl : public RxControl {
public:
    HubControl(const HubControl&) = delete;
    HubControl& operator=(const HubControl&) = delete;

    // Whether a control of this kind can be given.
    static bool CanBe(int kind, const CKeloRxNotifierBase* notifier);

    int Kind() const { return m_kind; }
    CKeloRxNotifierBase& Notifier() const { return m_notifier; }
    const std::vector<Subscription>& Subscriptions() const { return m_subscriptions; }
    bool IsSubscribed() const { return !m_subscriptions.empty(); }
    void Forget() { m_subscriptions.clear(); }
    // One of its messages. The notifier may destroy the control.
    void Tell(void* message, bool isStream);

    int SendRequest(std::uint64_t* requestNumber, void* message, int, QmxError* error) noexcept final;
    int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl* self, int, int, int, QmxError* error) noexcept final;
    int Stop(int) noexcept final;
    void Reserved0() noexcept final {}
    void Reserved1() noexcept final {}
    void Reserved2() noexcept final {}
    void Reserved3() noexcept final {}
    void Reserved6() noexcept final {}
    void Reserved7() noexcept final {}
    void Reserved8() noexcept final {}
    void Reserved9() noexcept final {}
    void Reserved10() noexcept final {}
    void Reserved11() noexcept final {}
    void Reserved12() noexcept final {}
    void Reserved13() noexcept final {}
    void Reserved14() noexcept final {}

protected:
    HubControl(int kind, CKeloRxNotifierBase& notifier) : m_kind(kind), m_notifier(notifier) {}
    ~HubControl() = default;

private:
    // The request's number; 0 when too many wait.
    virtual std::uint64_t Queue(std::string_view request, std::string_view bytes) = 0;
    virtual void OnSubscribed(const Subscription&) {}
    virtual void OnStopped() {}

    const char* FaultOf(const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                        const RxControl* self) const;

    const int m_kind;
    CKeloRxNotifierBase& m_notifier;
    std::vector<Subscription> m_subscriptions;
};

} // namespace vesk

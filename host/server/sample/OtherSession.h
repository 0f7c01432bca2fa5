// Another user's session on the same server: places made-up orders by ordinary requests, so that what
// the others see comes by the stream.
//
// Thread: as RxHub. Lifetime: the server outlives it.
#pragma once

#include "host/server/RxHub.h"
#include "host/server/sample/SampleOrders.h"

namespace vesk {

class OtherSession final : private CKeloRxNotifierBase {
public:
    // The orders are the same for the same seed.
    OtherSession(Server& server, UserIdentity user, SampleMarket market, std::uint64_t seed);
    OtherSession(const OtherSession&) = delete;
    OtherSession& operator=(const OtherSession&) = delete;
    ~OtherSession() = default;

    // The number of orders that were registered; those that the server delays are not among them.
    std::size_t PlaceOrders(std::size_t count, std::int64_t nowMs);

private:
    void OnBroadcast(void* message, std::uint32_t value, void* context) noexcept override;
    void OnResponse(void* sender, void* message, void* context) noexcept override;
    void SendOrder();

    Server& m_server;
    UserIdentity m_user;
    SampleMarket m_market;
    SampleOrders m_orders;
    RxHub m_hub;
    RxControl* m_control; // the hub's
    qmx::MessageWriter m_writer;
    std::size_t m_registered = 0;
};

} // namespace vesk

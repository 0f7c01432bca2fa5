#include "host/server/sample/OtherSession.h"

namespace vesk {

OtherSession::OtherSession(Server& server, UserIdentity user, SampleMarket market, std::uint64_t seed)
    : m_server(server), m_user(user), m_market(std::move(market)), m_orders(m_market, server.Config(), seed),
      m_hub(server, std::move(user)), m_control(m_hub.Get(kRxRequests, this)) {}

std::size_t OtherSession::PlaceOrders(std::size_t count, std::int64_t nowMs) {
    const std::size_t before = m_registered;
    for (std::size_t i = 0; i < count; ++i) {
        SendOrder();
        m_hub.Pump(nowMs);
    }
    return m_registered - before;
}

void OtherSession::SendOrder() {
    Registration order = m_orders.Next();
    order.Set(tag::requestName, "add_sip_orders");
    order.Set(tag::loginId, m_user.loginId);
    order.Set(tag::peerIdA, m_user.peerIdA);
    order.Set(tag::peerIdB, m_user.peerIdB);
    order.Set(tag::customerFirm, "C");
    order.Set(tag::startDate, std::to_string(m_server.Now() + 86'400));
    // Unlike a count of its own it is new after a restart too.
    order.Set(tag::orderId, m_user.loginId + "-" + std::to_string(m_server.Registrations().size() + 1));
    order.AddTo(m_writer.Start());
    QmxError ignored;
    m_control->SendRequest(nullptr, m_writer.Handle(), 0, &ignored);
}

void OtherSession::OnBroadcast(void*, std::uint32_t, void*) noexcept {}

void OtherSession::OnResponse(void*, void* message, void*) noexcept {
    if (!qmx::Has(message, tag::errorCode)) ++m_registered;
}

} // namespace vesk

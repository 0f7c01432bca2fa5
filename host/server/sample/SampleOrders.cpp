#include "host/server/sample/SampleOrders.h"

#include "host/server/Server.h"
#include "host/server/schedule/Schedule.h"

namespace vesk {

SampleOrders::SampleOrders(const SampleMarket& market, const ServerConfig& config, std::uint64_t seed)
    : m_market(market), m_frequencies(config.frequencies), m_random(seed) {
    std::erase_if(m_frequencies, [](const Frequency& row) { return !IsKnownFrequency(row.name); });
    if (m_frequencies.empty()) m_frequencies = {{"daily"}, {"weekly"}, {"monthly"}};
}

Registration SampleOrders::Next() {
    const SampleScrip& scrip = AnyOf(m_market.scrips);
    const Frequency& frequency = AnyOf(m_frequencies);
    const bool byValue = Below(2) != 0;
    // Paise, of whole rupees.
    const std::size_t value = byValue ? 100 * (100 + Below(50'000)) : 1 + Below(500);
    const std::size_t periods = static_cast<std::size_t>(frequency.minimumPeriods.value_or(1)) + 1 + Below(36);
    Registration order;
    order.Reserve();
    order.Set(tag::frequency, frequency.name);
    order.Set(tag::token, scrip.token);
    order.Set(tag::side, Below(4) ? "B" : "S");
    order.Set(tag::validity, "DAY");
    order.Set(tag::orderType, "MKT");
    order.Set(tag::amountOrQuantity, std::to_string(value));
    order.Set(tag::account, AnyOf(m_market.accounts));
    order.Set(tag::investType, byValue ? "value" : "qty");
    order.Set(tag::exchange, scrip.exchange);
    order.Set(tag::tradingSymbol, scrip.tradingSymbol);
    order.Set(tag::totalPeriod, std::to_string(periods));
    order.Set(tag::product, "CNC");
    order.Set(tag::orderSource, "TWS");
    return order;
}

std::size_t PlaceSampleOrders(Server& server, const UserIdentity& user, const SampleMarket& market,
                              std::uint64_t seed, std::size_t count) {
    SampleOrders orders(market, server.Config(), seed);
    qmx::MessageWriter writer;
    std::size_t registered = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Registration order = orders.Next();
        order.Set(tag::requestName, "add_sip_orders");
        order.Set(tag::loginId, user.loginId);
        order.Set(tag::peerIdA, user.peerIdA);
        order.Set(tag::peerIdB, user.peerIdB);
        order.Set(tag::customerFirm, "C");
        order.Set(tag::startDate, std::to_string(server.Now() + 86'400));
        // Unlike a count of its own it is new after a restart too.
        order.Set(tag::orderId, user.loginId + "-" + std::to_string(server.Registrations().size() + 1));
        order.AddTo(writer.Start());
        for (const std::string& answer : server.Handle(writer.Handle(), user).answers)
            registered += !qmx::Has(qmx::MessageReader(answer).Handle(), tag::errorCode);
    }
    return registered;
}

} // namespace vesk

#include "host/server/MarketServer.h"

#include "host/server/schedule/Schedule.h"

#include <utility>

namespace vesk {
namespace {

// What made-up orders are for.
SampleMarket SampleMarketOf(const ScripMaster& master, const ClientList& clients) {
    SampleMarket market;
    for (const Client& client : clients.Clients())
        market.accounts.push_back(client.id);
    for (const Scrip& scrip : master.Scrips())
        market.scrips.push_back({scrip.exchange, scrip.token, scrip.tradingSymbol});
    return market;
}

// About which a registration's orders are filled: its scrip's last price in paise, 0 when that is unknown.
std::function<std::int64_t(const Registration&)> PricesOf(const ScripMaster& master) {
    return [&master](const Registration& registration) {
        const Scrip* scrip =
            master.ByTradingSymbol(registration.Text(tag::exchange), registration.Text(tag::tradingSymbol));
        return scrip ? scrip->lastPrice : 0;
    };
}

// Whom orders may be for; nothing, and so anybody, without a list.
std::function<bool(std::string_view)> ClientsOf(const ClientList& clients) {
    if (clients.Clients().empty()) return {};
    return [&clients](std::string_view account) { return clients.Find(account) != nullptr; };
}

ServerConfig WithCalendar(ServerConfig config, const TradingCalendar& calendar) {
    for (const std::uint32_t number : calendar.Dates())
        config.nonTrading.push_back(DateOf(number));
    return config;
}

} // namespace

MarketServer::MarketServer(JournalOpening&& opening, ServerConfig config, const ScripMaster& master,
                           const ClientList& clients, const TradingCalendar& calendar, bool hasConnections)
    : m_journal(std::move(opening.journal)), m_records(opening.records.size()),
      m_server(WithCalendar(std::move(config), calendar), *m_journal, opening.records, SystemClock()),
      m_commands(m_server, SampleMarketOf(master, clients), hasConnections) {
    m_server.Clock().SetPrices(PricesOf(master));
    m_server.SetClients(ClientsOf(clients));
}

} // namespace vesk

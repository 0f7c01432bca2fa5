#include "host/server/sample/MarketOfServer.h"

#include "host/server/schedule/Schedule.h"

namespace vesk {

SampleMarket SampleMarketOf(const ScripMaster& master, const ClientList& clients) {
    SampleMarket market;
    for (const Client& client : clients.Clients())
        market.accounts.push_back(client.id);
    for (const Scrip& scrip : master.Scrips())
        market.scrips.push_back({scrip.exchange, scrip.token, scrip.tradingSymbol});
    return market;
}

std::function<std::int64_t(const Registration&)> PricesOf(const ScripMaster& master) {
    return [&master](const Registration& registration) {
        const Scrip* scrip =
            master.ByTradingSymbol(registration.Text(tag::exchange), registration.Text(tag::tradingSymbol));
        return scrip ? scrip->lastPrice : 0;
    };
}

std::function<bool(std::string_view)> ClientsOf(const ClientList& clients) {
    if (clients.Clients().empty()) return {};
    return [&clients](std::string_view account) { return clients.Find(account) != nullptr; };
}

std::vector<std::chrono::year_month_day> DatesOf(std::span<const std::uint32_t> numbers) {
    std::vector<std::chrono::year_month_day> dates;
    for (const std::uint32_t number : numbers)
        dates.push_back(DateOf(number));
    return dates;
}

} // namespace vesk

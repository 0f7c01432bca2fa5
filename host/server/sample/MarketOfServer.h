// What a trading server is told of the market that the terminal's files describe.
#pragma once

#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/server/sample/SampleOrders.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace vesk {

SampleMarket SampleMarketOf(const ScripMaster& master, const ClientList& clients);

// About which a registration's orders are filled: its scrip's last price in paise, 0 when that is unknown. The
// master outlives it.
std::function<std::int64_t(const Registration&)> PricesOf(const ScripMaster& master);

// Whom orders may be for; nothing, and so anybody, without a list. The clients outlive it.
std::function<bool(std::string_view)> ClientsOf(const ClientList& clients);

// As TradingCalendar::Dates has them.
std::vector<std::chrono::year_month_day> DatesOf(std::span<const std::uint32_t> numbers);

} // namespace vesk

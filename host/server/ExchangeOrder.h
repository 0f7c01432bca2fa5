// The exchange orders that a registration's instalments became, and their fills.
//
// Thread: any; plain values.
#pragma once

#include "host/server/Registration.h"
#include "host/server/ServerConfig.h"
#include "host/server/journal/FieldRecord.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

inline constexpr std::string_view kStatusComplete = "complete";
inline constexpr std::string_view kStatusOpen = "open";
inline constexpr std::string_view kStatusRejected = "rejected";

// One order with all its fills: one journal record, so that neither is there without the other.
struct ExchangeOrder {
    // The journal's form and back; nothing when the text is not an order of a registration.
    std::string Json() const;
    static std::optional<ExchangeOrder> FromJson(std::string_view text);

    FieldRecord order;
    std::vector<FieldRecord> trades;
    std::optional<Instalment> instalment{}; // absent when it was placed by hand
};

// What became of one registration, in the order in which it was entered.
struct ExecutionHistory {
    void Enter(ExchangeOrder made);

    std::vector<FieldRecord> orders;
    std::vector<FieldRecord> trades;
};

// Nothing when the order does not tell.
std::optional<std::chrono::year_month_day> PlacementDay(const FieldRecord& order);

// The rest of an order that is still open lapses at the close of its day: the order as it stands today.
FieldRecord OrderAsOf(std::chrono::year_month_day today, FieldRecord order);

// Orders of one registration that are to be placed, one a day.
struct ExecutionPlan {
    std::vector<std::chrono::year_month_day> days;
    std::int64_t price = 0; // paise, about which the orders are filled; 0: made up from the scrip
    std::uint64_t seed = 1;
};

// An order of the plan as it is placed.
struct Placement {
    const Registration& registration;
    const ExecutionPlan& plan;
    const FillRates& rates;
    std::chrono::year_month_day day;
    std::size_t sequence; // among all orders, from 1
};
// Places it on a made-up exchange, which fills, fills partly or rejects: the same for the same seed and
// sequence. How often, the rates say. One order in three leaves the details of its fills to the trades.
ExchangeOrder PlaceOnExchange(const Placement& placement);

} // namespace vesk

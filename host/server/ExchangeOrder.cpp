#include "host/server/ExchangeOrder.h"

#include "host/server/journal/Journal.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <cstdio>
#include <random>

namespace vesk {
namespace {

// Prices are whole paise.
constexpr std::int64_t kTick = 5;

constexpr std::uint32_t kOfTheRegistration[] = {tag::loginId,       tag::account,           tag::exchange,
                                                tag::tradingSymbol, tag::orderType,         tag::side,
                                                tag::orderSource,   tag::registrationNumber};
constexpr std::uint32_t kOfTheOrder[] = {tag::exchange, tag::tradingSymbol, tag::registrationNumber,
                                         tag::orderNumber};
constexpr std::uint32_t kOfTheLastFill[] = {tag::fillDetailB, tag::fillDetailA};

constexpr std::string_view kInstalment = ",\"instalment\":";

constexpr std::string_view kRejectReasons[] = {
    "Margin of the account is not sufficient",
    "Scrip is not open for trading",
    "Quantity exceeds the limit of a single order",
};

template <std::size_t count>
void Copy(const std::uint32_t (&tags)[count], const FieldRecord& from, FieldRecord& to) {
    for (const std::uint32_t tag : tags)
        to.Set(tag, from.Text(tag));
}

std::string TimeOfDay(std::int64_t second) {
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(second / 3600 % 24),
                  static_cast<int>(second / 60 % 60), static_cast<int>(second % 60));
    return text;
}

class SimulatedExchange {
public:
    explicit SimulatedExchange(const Placement& placement)
        : m_placement(placement), m_random(placement.plan.seed + placement.sequence) {}

    ExchangeOrder Place() {
        Copy(kOfTheRegistration, m_placement.registration, Order());
        Order().Set(tag::orderNumber, DatedNumber("1", m_placement.day, m_placement.sequence));
        Order().Set(tag::placementTime, RecordDate(m_placement.day) + ' ' + TimeOfDay(m_second));
        Order().Set(tag::price, std::to_string(m_price));
        Order().Set(tag::quantity, std::to_string(m_quantity));
        Order().Set(tag::tradedQuantity, "0");
        constexpr std::int64_t percent = 100;
        const std::int64_t lot = Below(percent);
        if (lot < m_placement.rates.rejected)
            Reject();
        else if (lot < m_placement.rates.rejected + m_placement.rates.partial && m_quantity > 1)
            Fill(1 + Below(m_quantity - 1), kStatusOpen);
        else
            Fill(m_quantity, kStatusComplete);
        Order().Shrink();
        return std::move(m_made);
    }

private:
    FieldRecord& Order() { return m_made.order; }
    std::int64_t Below(std::int64_t end) {
        return static_cast<std::int64_t>(m_random() % static_cast<std::uint64_t>(end));
    }
    // A scrip stays near its own price.
    std::int64_t PriceNear() {
        constexpr std::int64_t highest = 1'000'000'000'000;
        constexpr std::int64_t spread = 20'000;
        const std::int64_t madeUp = 500 + Crc32(m_placement.registration.Text(tag::token)) % spread;
        const std::int64_t wanted = m_placement.plan.price;
        const std::int64_t usual = std::min(wanted > 0 ? wanted : madeUp, highest);
        return Tradable(usual + usual * (Below(41) - 20) / 1000);
    }
    static std::int64_t Tradable(std::int64_t price) { return std::max(kTick, price / kTick * kTick); }
    std::int64_t QuantityFor(std::int64_t price) const {
        const Registration& registration = m_placement.registration;
        const std::int64_t amount = WholeNumber(registration.Text(tag::amountOrQuantity)).value_or(1);
        const bool byQuantity = registration.Text(tag::investType) == "qty";
        return std::max<std::int64_t>(1, byQuantity ? amount : amount / price);
    }

    void Reject() {
        Order().Set(tag::sipStatus, kStatusRejected);
        Order().Set(tag::userText, kRejectReasons[Below(std::ssize(kRejectReasons))]);
    }
    // Fills of equal size, so the traded price is their mean.
    void Fill(std::int64_t quantity, std::string_view status) {
        constexpr std::int64_t mostFills = 3;
        const std::int64_t count = 1 + Below(std::min(mostFills, quantity));
        std::int64_t sum = 0;
        for (std::int64_t i = 0; i < count; ++i)
            sum += AddTrade();
        Order().Set(tag::sipStatus, status);
        Order().Set(tag::tradedQuantity, std::to_string(quantity));
        if (m_placement.sequence % 3 == 0) return;
        Order().Set(tag::tradedPrice, std::to_string(sum / count));
        Copy(kOfTheLastFill, m_made.trades.back(), Order());
    }
    std::int64_t AddTrade() {
        const std::int64_t price = Tradable(m_price + kTick * (Below(5) - 2));
        m_second += 1 + Below(60);
        FieldRecord trade;
        Copy(kOfTheOrder, Order(), trade);
        trade.Set(tag::tradedPrice, std::to_string(price));
        trade.Set(tag::fillDetailA, TimeOfDay(m_second));
        trade.Set(tag::fillDetailB, RecordDate(m_placement.day));
        trade.Shrink();
        m_made.trades.push_back(std::move(trade));
        return price;
    }

    const Placement& m_placement;
    std::mt19937_64 m_random;
    std::int64_t m_price = PriceNear();
    std::int64_t m_quantity = QuantityFor(m_price);
    std::int64_t m_second = 9 * 3600 + 15 * 60 + Below(600);
    ExchangeOrder m_made;
};

} // namespace

ExchangeOrder PlaceOnExchange(const Placement& placement) {
    return SimulatedExchange(placement).Place();
}

std::optional<std::chrono::year_month_day> PlacementDay(const FieldRecord& order) {
    const std::string_view stamp = order.Text(tag::placementTime);
    return ParseRecordDate(stamp.substr(0, stamp.find(' ')));
}

FieldRecord OrderAsOf(std::chrono::year_month_day today, FieldRecord order) {
    if (order.Text(tag::sipStatus) != kStatusOpen || PlacementDay(order).value_or(today) >= today) return order;
    order.Set(tag::sipStatus, kStatusCancelled);
    order.Set(tag::userText, "The rest lapsed at the close");
    return order;
}

void ExecutionHistory::Enter(ExchangeOrder made) {
    orders.push_back(std::move(made.order));
    std::move(made.trades.begin(), made.trades.end(), std::back_inserter(trades));
}

std::string ExchangeOrder::Json() const {
    std::string json = "{\"order\":";
    order.AppendJson(json);
    json += ",\"trades\":[";
    for (const FieldRecord& trade : trades) {
        if (&trade != &trades.front()) json += ',';
        trade.AppendJson(json);
    }
    json += ']';
    if (instalment) {
        json += kInstalment;
        instalment->Fields().AppendJson(json);
    }
    json += '}';
    return json;
}

std::optional<ExchangeOrder> ExchangeOrder::FromJson(std::string_view text) {
    RecordReader reader(text);
    ExchangeOrder read;
    if (!reader.Take("{\"order\":") || !reader.TakeFields(read.order) || !reader.Take(",\"trades\":["))
        return std::nullopt;
    if (!reader.Take(']')) {
        do {
            if (!reader.TakeFields(read.trades.emplace_back())) return std::nullopt;
        } while (reader.Take(','));
        if (!reader.Take(']')) return std::nullopt;
    }
    if (reader.Take(kInstalment)) {
        FieldRecord fields;
        if (!reader.TakeFields(fields)) return std::nullopt;
        read.instalment = Instalment::FromFields(fields);
        if (!read.instalment || !PlacementDay(read.order)) return std::nullopt;
    }
    if (!reader.Take('}') || !reader.AtEnd() || read.order.Text(tag::registrationNumber).empty())
        return std::nullopt;
    return read;
}

} // namespace vesk

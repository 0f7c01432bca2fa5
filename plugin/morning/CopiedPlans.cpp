#include "plugin/morning/CopiedPlans.h"

#include "plugin/base/Text.h"
#include "plugin/morning/PlanRuns.h"
#include "plugin/orderbook/RecordedRow.h"

#include <utility>

namespace planfold {

namespace {

// A single run is the same of any frequency, and of days servers want the fewest. How many they want may not be
// known yet.
std::string_view FrequencyOfOneRun(std::string_view own, const Session& session) {
    constexpr std::string_view daily = "daily";
    return FindFrequency(own) && session.MinimumPeriods(*FindFrequency(daily)) <= 1 ? daily : own;
}

} // namespace

CopiedPlans CopyPlans(const OrderCache& records, std::span<const std::string> numbers, CopiedPeriods periods,
                      Day start, const Session& session) {
    CopiedPlans copies;
    const ClosedDays closed = session.ClosedDays();
    for (const std::string& number : numbers) {
        const RecordId id = records.Find(number);
        if (id == kNoRecord) {
            ++copies.unknown;
            continue;
        }
        const sOrderinfo& record = records[id];
        const std::string_view status = record.Text(OrderField::sipStatus);
        if (periods != CopiedPeriods::one && !IsCancelled(status) && !HasEnded(status)) {
            ++copies.running;
            continue;
        }
        const RecordedRow row(record, session.m_nSipOperationMode != 0);
        const RecordTexts& asked = row.Row().asked;
        sSipOrderData order;
        order.account = asked[RecordField::account];
        order.exchange = asked[RecordField::exchange];
        order.tradingSymbol = asked[RecordField::tradingSymbol];
        order.side = asked[RecordField::side];
        order.sideWord = order.side == "S" ? "SELL" : "BUY";
        order.investType = asked[RecordField::investType];
        order.amountOrQuantity = asked[RecordField::value];
        order.frequency = asked[RecordField::frequency];
        order.totalPeriod = asked[RecordField::periods];
        order.product = record.Text(OrderField::product);
        order.orderType = "MKT";
        order.customerFirm = "C";
        order.validity = "DAY";
        order.startDate = std::to_string(DateSeconds(DateOf(start)));
        if (periods == CopiedPeriods::one) {
            order.frequency = FrequencyOfOneRun(order.frequency, session);
            order.totalPeriod = "1";
        }
        if (periods == CopiedPeriods::left) {
            const std::int64_t left = status == "expired" ? 0 : RunsLeft(record, closed).value_or(-1);
            if (left == 0) {
                ++copies.over;
                continue;
            }
            order.totalPeriod = left > 0 ? std::to_string(left) : std::string();
        }
        if (order.account.empty() || order.amountOrQuantity.empty() || order.totalPeriod.empty()
            || !FindFrequency(order.frequency))
            ++copies.unknown;
        else
            copies.orders.push_back(std::move(order));
    }
    return copies;
}

std::string DescribeCopies(const CopiedPlans& copies) {
    std::string text = Format("%zu %s come into the basket.", copies.orders.size(),
                              copies.orders.size() == 1 ? "order" : "orders");
    const std::pair<std::size_t, const char*> leftOut[] = {{copies.running, "still running"},
                                                           {copies.over, "without runs left"},
                                                           {copies.unknown, "not readable"}};
    const char* before = " Left out: ";
    for (const auto& [count, why] : leftOut) {
        if (count == 0) continue;
        text += std::exchange(before, ", ") + Format("%zu %s", count, why);
    }
    return text;
}

} // namespace planfold

// The days of the month on which no instalment is executed: one range a year.
//
// Thread: any; plain values.
#pragma once

#include "host/server/ServerRefusal.h"
#include "host/server/journal/FieldRecord.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct RestrictedRange {
    // Reads it from a request, a message handle. `today` bounds the years that may be restricted.
    static std::optional<ServerRefusal> Read(void* request, std::chrono::year_month_day today,
                                             RestrictedRange& range);

    // The fields as they stand in requests, answers and the journal.
    FieldRecord Fields() const;
    // The journal's form and back, with the day of setting.
    std::string Json() const;
    static std::optional<RestrictedRange> FromJson(std::string_view text);

    // Both days are of every month of the year.
    unsigned fromDay = 0;
    unsigned toDay = 0;
    std::chrono::year year{};
    std::chrono::sys_days since{}; // the first day that goes by it, when it was set or before
};

class RestrictedDays {
public:
    // Replaces the range of the same year.
    void Set(const RestrictedRange& range);
    // The range that was set last; null without one.
    const RestrictedRange* Last() const { return m_ranges.empty() ? nullptr : &m_ranges.back(); }
    // The first day that goes by it.
    std::chrono::sys_days Since() const {
        return m_ranges.empty() ? std::chrono::sys_days() : m_ranges.back().since;
    }
    // How often one was set.
    std::size_t Changes() const { return m_changes; }
    // The ranges in the order in which they were set.
    const std::vector<RestrictedRange>& Ranges() const { return m_ranges; }
    bool Has(std::chrono::year_month_day day) const;
    // Every day of every range, ascending.
    std::vector<std::chrono::year_month_day> All() const;

private:
    std::vector<RestrictedRange> m_ranges;
    std::size_t m_changes = 0;
};

// On which days the market is open, as far as instalments go.
struct MarketDays {
    // Neither a weekend, nor a non-trading day, nor restricted.
    bool IsOpen(std::chrono::sys_days day) const;
    // The first open day from this one on.
    std::chrono::sys_days FirstOpen(std::chrono::sys_days from) const;

    std::vector<std::chrono::year_month_day> nonTrading{}; // ascending
    RestrictedDays restricted{};
};

} // namespace vesk

// What the server does by its clock: which day it is, on which days the market is open, and the instalments
// that are due.
//
// An instalment is one journal record, its exchange order with its number and its place in the schedule. How
// far a registration is, its next day and its end follow from it, now as at a replay.
//
// Thread: the server's. Lifetime: what the constructor takes outlives it.
#pragma once

#include "host/server/Registrations.h"
#include "host/server/ServerConfig.h"
#include "host/server/journal/ServerJournal.h"
#include "host/server/schedule/DueQueue.h"
#include "host/server/schedule/RestrictedDays.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct ServerClock {
    std::function<std::int64_t()> now;                                  // seconds since 1970-01-01 00:00 UTC
    std::function<std::chrono::year_month_day(std::int64_t)> localDate; // in the exchange's zone
};
// The machine's clock and zone.
ServerClock SystemClock();

// What Clockwork::ExecuteDue did.
struct Executed {
    std::size_t instalments = 0;
    std::string fault{}; // why it stopped: until tomorrow, or the journal takes something
};

class Clockwork {
public:
    Clockwork(const ServerConfig& config, Registrations& registrations, ServerJournal& journal,
              ServerClock clock);
    Clockwork(const Clockwork&) = delete;
    Clockwork& operator=(const Clockwork&) = delete;

    // Seconds since 1970, by the server's clock.
    std::int64_t Now() const { return m_clock.now() + m_aheadSeconds; }
    // The same by the machine's, which is not advanced.
    std::int64_t MachineTime() const { return m_clock.now(); }
    std::chrono::year_month_day Today() const { return DateAt(Now()); }
    std::chrono::year_month_day DateAt(std::int64_t seconds) const { return m_clock.localDate(seconds); }
    const MarketDays& Market() const { return m_market; }
    const RestrictedDays& Restricted() const { return m_market.restricted; }

    // The price of a registration's scrip, in paise, about which the orders of its instalments are filled; 0 as
    // in ExecutionPlan.
    void SetPrices(std::function<std::int64_t(const Registration&)> prices) { m_prices = std::move(prices); }
    std::int64_t PriceOf(const Registration& registration) const {
        return m_prices ? m_prices(registration) : 0;
    }

    // False when the journal's record is neither of the clock nor of restricted days.
    bool Replay(std::string_view record);
    // As at the start.
    void Clear();
    // All that a replay needs. It goes before the registrations, because a change of the days lets instalments
    // of paused ones lapse.
    void WriteTo(const Journal::Sink& sink) const;
    std::size_t RecordCount() const { return 1 + m_market.restricted.Ranges().size(); }

    // The server's clock goes forward, never back, and is as far ahead after a restart. Why it did not.
    std::string AdvanceTo(std::chrono::year_month_day date);
    // Goes to the next day on which an instalment is executed, and stays when one is due.
    std::string AdvanceToNextInstalment();
    // Journals the range and goes by it. Why it does not; empty when it does.
    std::string Restrict(RestrictedRange range);

    // Sets the day of an active registration's next instalment, which its record shows; nothing of any other.
    std::optional<std::chrono::sys_days> SetNextExecution(Registration& registration) const;
    // Queues it for that day. True when the record has changed.
    bool Schedule(std::size_t place);

    // Whether ExecuteDue has anything to do.
    bool HasDue() const;
    // Executes instalments that are due by the server's clock, in order of their day, then of registration: at
    // least some, and more until the time is over.
    Executed ExecuteDue(std::chrono::milliseconds time);
    // Executes all of one registration, before a change that came when they were due already.
    std::string ExecuteDueOf(std::size_t place);

    // Places exchange orders of the registration. Why it did not; empty when all are placed. They are the same
    // for the same plan and the same orders before.
    std::string Execute(const Registration& registration, const ExecutionPlan& plan);
    // The last `count` days until today on which an instalment of the registration could have been executed and
    // was not, in order: those of its schedule, and of that schedule led on to before its start. Fewer when
    // there are not so many.
    std::vector<std::chrono::year_month_day> OpenDays(const Registration& registration,
                                                      std::size_t count) const;

private:
    // Exchange orders that go to the journal together.
    struct NewOrders {
        void Add(ExchangeOrder order) {
            records.Add(order.Json());
            orders.push_back(std::move(order));
        }
        std::vector<ExchangeOrder> orders{};
        JournalBatch records{};
    };
    // The day on which the journal took no instalment, and how often it had taken something before.
    struct Halt {
        std::chrono::year_month_day day;
        std::size_t writes;
        bool operator==(const Halt&) const = default;
    };

    // Goes by the range. What came until now while a registration was paused lapses by the days as they were.
    void Apply(const RestrictedRange& range);
    std::optional<std::chrono::sys_days> NextExecution(const Registration& registration) const;
    // Schedules some of those whose days may have changed.
    void ScheduleSome();
    void PlaceInstalment(const Registration& registration, const PlanProgress& progress,
                         std::chrono::sys_days day, NewOrders& made) const;
    // Executes some instalments of the first day, which is due.
    std::string ExecuteSome(std::size_t& count);
    // Journals and enters the orders.
    std::string Keep(NewOrders made);
    // The first day whose instalments may not all be executed; today at the latest.
    std::chrono::sys_days ExecutedUntil() const;

    const ServerConfig& m_config;
    Registrations& m_registrations;
    ServerJournal& m_journal;
    ServerClock m_clock;
    MarketDays m_market;
    std::int64_t m_aheadSeconds = 0; // of the machine's clock
    DueQueue m_due;                  // of the active registrations
    // The place from which on registrations are to be scheduled anew, because the market's days changed.
    std::optional<std::size_t> m_unscheduled{};
    std::optional<Halt> m_halt{}; // until the journal takes something or the clock is advanced
    std::function<std::int64_t(const Registration&)> m_prices;
};

} // namespace vesk

// The trading server, in the process: takes one request's message, and gives what it would send back. Every
// change is in the journal before it is answered or told to a listener.
//
// Thread:  one at a time (the GUI thread). Owner: the caller keeps journal and listeners alive.
// Failure: a request that cannot be served is answered with code and text; nothing is thrown for it.
//
// It knows no wall clock and delivers nothing: a ServerSession queues, delays and sends.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/ExchangeOrder.h"
#include "host/server/OrderChange.h"
#include "host/server/OrderCheck.h"
#include "host/server/Registration.h"
#include "host/server/RowQuery.h"
#include "host/server/ServerConfig.h"
#include "host/server/journal/Journal.h"
#include "host/server/schedule/DueQueue.h"
#include "host/server/schedule/MarketDays.h"
#include "host/server/schedule/RestrictedDays.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

struct ServerClock {
    std::function<std::int64_t()> now;                                  // seconds since 1970-01-01 00:00 UTC
    std::function<std::chrono::year_month_day(std::int64_t)> localDate; // in the exchange's zone
};
// The machine's clock and zone.
ServerClock SystemClock();

// Told of every change of a registration, from inside Server::Handle and Server::ExecuteDue.
class UpdateListener {
public:
    virtual void OnUpdate(const Registration& registration) = 0;

protected:
    ~UpdateListener() = default;
};

// What a request is answered with: messages that are ready, or rows to be asked for one after the other.
struct Reply {
    std::vector<std::string> answers{};
    std::optional<RowQuery> rows{};
    bool isCut = false; // the connection that asked is to be cut
};

// What Server::ExecuteDue did.
struct Executed {
    std::size_t instalments = 0;
    std::string fault{}; // why it stopped: until tomorrow, or the journal takes something
};

struct FillPlan;

class Server {
public:
    // `records` are the journal's, replayed here.
    Server(ServerConfig config, Journal& journal, const std::vector<std::string_view>& records,
           ServerClock clock);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The answers' bytes, in the order they are sent. `request` is a message handle. Under `sentAs` it comes
    // again when its answer was lost: a change is then not made twice, but answered as the first time.
    Reply Handle(void* request, const UserIdentity& user, std::string_view sentAs = {});
    // The next row's bytes, with the record as it is now. Empty when the registrations looked at in this call
    // gave none: it looks at a few hundred at most.
    std::string NextRow(RowQuery& query);

    // Enters many made-up registrations at once and tells no listener. Why it stopped; empty when all is done.
    std::string Fill(const FillPlan& plan);

    // Places exchange orders of the registration. Why it did not; empty when all are placed. They are the same
    // for the same plan and the same orders before.
    std::string Execute(const Registration& registration, const ExecutionPlan& plan);
    // The last `count` days until today on which an instalment of the registration could have been executed and
    // was not, in order: those of its schedule, and of that schedule led on to before its start. Fewer when
    // there are not so many.
    std::vector<std::chrono::year_month_day> OpenDays(const Registration& registration,
                                                      std::size_t count) const;

    // The server's clock goes forward, never back, and is as far ahead after a restart. Why it did not.
    std::string AdvanceTo(std::chrono::year_month_day date);
    // To the next day on which an instalment is executed; stays when one is due.
    std::string AdvanceToNextInstalment();
    // Executes instalments that are due by the server's clock, in order of their day, then of registration: at
    // least some, and more until the time is over.
    Executed ExecuteDue(std::chrono::milliseconds time);
    // Whether it has anything to do.
    bool HasDue() const;
    // About which price of a registration, in paise, the orders of its instalments are filled; 0 as in
    // ExecutionPlan.
    void SetPrices(std::function<std::int64_t(const Registration&)> prices) { m_prices = std::move(prices); }
    // Whom orders may be for; without it they may be for anybody.
    void SetClients(std::function<bool(std::string_view account)> knows) { m_knows = std::move(knows); }
    std::int64_t PriceOf(const Registration& registration) const {
        return m_prices ? m_prices(registration) : 0;
    }

    // After a start: whether most of the journal's many records are superseded.
    bool IsJournalStale() const;
    // Writes it anew with what the server holds. Why it could not; empty when that is done.
    std::string CompactJournal();
    // What became of it, for the log; empty when the journal was left as it is.
    std::string CompactWhenStale();

    void AddListener(UpdateListener& listener);
    void RemoveListener(UpdateListener& listener);

    const ServerConfig& Config() const { return m_config; }
    // Faults may be switched while running.
    ServerConfig& Config() { return m_config; }

    // Seconds since 1970, by the server's clock.
    std::int64_t Now() const { return m_clock.now() + m_aheadSeconds; }
    std::chrono::year_month_day Today() const { return m_clock.localDate(Now()); }

    // In order of registration.
    const std::vector<Registration>& Registrations() const { return m_registrations; }
    // Null when the number is unknown.
    const Registration* Find(std::string_view registrationNumber) const;
    const RestrictedDays& Restricted() const { return m_market.restricted; }
    // Which journal record this server could not read; it then refuses every request. Empty when all is well.
    const std::string& ReplayError() const { return m_replayError; }

private:
    struct Handler;
    static const Handler kHandlers[];

    Reply Dispatch(std::string_view name, void* request, const UserIdentity& user, std::string_view sentAs);
    Reply AnswerOperationMode(void* request, const UserIdentity& user);
    Reply AddRegistration(void* request, const UserIdentity& user);
    template <std::optional<Refusal> (*read)(void*, const UserIdentity&, RowQuery&)>
    Reply StartQuery(void* request, const UserIdentity& user);

    Reply SetRestrictedDays(void* request, const UserIdentity& user);
    Reply AnswerRestrictedDays(void* request, const UserIdentity& user);
    Reply StartExecutionQuery(const ExecutionQuery& kind, void* request, const UserIdentity& user);
    Reply ChangeRegistration(const ChangeKind& kind, void* request, const UserIdentity& user,
                             std::string_view sentAs);

    std::string NextRegistration(RowQuery& query);
    std::string NextExecution(RowQuery& query);
    // What the user's request of this identifier has registered; null when it has not.
    const Registration* FindSent(const std::string& identifier, const UserIdentity& user) const;
    // The registration that the request names.
    std::optional<Refusal> FindNamed(void* request, const Registration*& found) const;

    Reply Refuse(void* request, const Refusal& refusal);
    Reply AnswerRegistered(void* request, const Registration& registration);
    Registration MakeRegistration(void* request) const;
    // Sets the next execution day, journals, enters, and tells the listeners.
    std::optional<Refusal> Keep(Registration registration);
    // Why the records are not on the disk; empty when they are.
    template <class Records>
    std::string Write(const Records& records) {
        std::string error;
        if (!m_journal.Append(records, error)) return "The server's journal " + error;
        m_stoppedOn.reset();
        return {};
    }
    // Exchange orders that go to the journal together.
    struct NewOrders {
        void Add(ExchangeOrder order) {
            records.Add(order.Json());
            orders.push_back(std::move(order));
        }
        std::vector<ExchangeOrder> orders{};
        JournalBatch records{};
    };
    // Journals and enters.
    std::string Keep(NewOrders made);
    // False when it is none that this server knows.
    bool Replay(std::string_view record);
    void MakeRoom(std::size_t more);
    // Where it stands.
    std::size_t Enter(Registration registration);
    void Enter(ExchangeOrder order);
    void Tell(const Registration& registration);

    // What came until now while a registration was paused lapses by the days as they were.
    void Restrict(const RestrictedRange& range);
    // The day of an active registration, nothing of any other; it is shown in its record.
    std::optional<std::chrono::sys_days> NextExecution(const Registration& registration) const;
    std::optional<std::chrono::sys_days> SetNextExecution(Registration& registration) const;
    // True when that changed the record.
    bool Schedule(std::size_t place);
    // Some of those whose days may have changed.
    void ScheduleSome();
    void PlaceInstalment(const Registration& registration, const Progress& progress, std::chrono::sys_days day,
                         NewOrders& made) const;
    // Of the first day, which is due.
    std::string ExecuteSome(std::size_t& count);
    // All of one registration, before a change that came when they were due already.
    std::string ExecuteDueOf(std::size_t place);
    // The first day whose instalments may not all be executed; today at the latest.
    std::chrono::sys_days ExecutedUntil() const;
    // The registration takes the instalment into account, when it was one and is not yet counted.
    void Count(const ExchangeOrder& order);
    static std::string ClockRecord(std::int64_t ahead);
    bool ReplayClock(std::string_view record);
    // Of the requests that registered, by place.
    std::vector<std::string_view> OrderIdentifiers() const;
    void WriteAll(const Journal::Sink& sink) const;

    ServerConfig m_config;
    Journal& m_journal;
    ServerClock m_clock;
    qmx::MessageWriter m_writer;
    std::vector<Registration> m_registrations;
    std::unordered_map<std::string, std::size_t> m_byNumber;
    // Of the requests that registered; two users' may be the same.
    std::unordered_multimap<std::string, std::size_t> m_byRequestIdentifier;
    MarketDays m_market;
    std::unordered_map<std::string, ExecutionHistory> m_executions; // by registration number
    std::size_t m_orderCount = 0;                                   // of all registrations
    std::int64_t m_aheadSeconds = 0;                                // of the machine's clock
    DueQueue m_due;                                                 // of the active registrations
    // The place from which on registrations are to be scheduled anew, because the market's days changed.
    std::optional<std::size_t> m_unscheduled{};
    // The day on which the journal took no instalment; until it takes something or the clock is advanced.
    std::optional<std::chrono::year_month_day> m_stoppedOn{};
    std::function<std::int64_t(const Registration&)> m_prices;
    std::function<bool(std::string_view)> m_knows;
    std::size_t m_replayed = 0; // records
    std::vector<UpdateListener*> m_listeners;
    std::string m_replayError;
};

} // namespace vesk

// The trading server, in the process: takes one request's message, and gives what it would send back. Every
// change is in the journal before it is answered or told to a listener.
//
// Thread:  one at a time (the GUI thread). Owner: the caller keeps journal and listeners alive.
// Failure: a request that cannot be served is answered with code and text; nothing is thrown for it.
//
// It knows no wall clock and delivers nothing: RxHub queues, delays and delivers.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/ExchangeOrder.h"
#include "host/server/Journal.h"
#include "host/server/OrderChange.h"
#include "host/server/OrderCheck.h"
#include "host/server/Registration.h"
#include "host/server/RestrictedDays.h"
#include "host/server/RowQuery.h"
#include "host/server/ServerConfig.h"

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

// Told of every change of a registration, from inside Server::Handle.
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
};

struct FillPlan;

class Server {
public:
    // `records` are the journal's, replayed here.
    Server(ServerConfig config, Journal& journal, const std::vector<std::string_view>& records,
           ServerClock clock);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The answers' bytes, in the order they are sent. `request` is a message handle.
    Reply Handle(void* request, const UserIdentity& user);
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

    void AddListener(UpdateListener& listener);
    void RemoveListener(UpdateListener& listener);

    const ServerConfig& Config() const { return m_config; }
    // Faults may be switched while running.
    ServerConfig& Config() { return m_config; }

    // Seconds since 1970, by the server's clock.
    std::int64_t Now() const { return m_clock.now(); }

    // In order of registration.
    const std::vector<Registration>& Registrations() const { return m_registrations; }
    // Null when the number is unknown.
    const Registration* Find(std::string_view registrationNumber) const;
    const RestrictedDays& Restricted() const { return m_restricted; }
    // Which journal record this server could not read; it then refuses every request. Empty when all is well.
    const std::string& ReplayError() const { return m_replayError; }

private:
    struct Handler;
    static const Handler kHandlers[];

    Reply Dispatch(std::string_view name, void* request, const UserIdentity& user);
    Reply AnswerOperationMode(void* request, const UserIdentity& user);
    Reply AddRegistration(void* request, const UserIdentity& user);
    template <std::optional<Refusal> (*read)(void*, const UserIdentity&, RowQuery&)>
    Reply StartQuery(void* request, const UserIdentity& user);

    Reply SetRestrictedDays(void* request, const UserIdentity& user);
    Reply AnswerRestrictedDays(void* request, const UserIdentity& user);
    Reply StartExecutionQuery(const ExecutionQuery& kind, void* request, const UserIdentity& user);
    Reply ChangeRegistration(const ChangeKind& kind, void* request, const UserIdentity& user);

    std::string NextRegistration(RowQuery& query);
    std::string NextExecution(RowQuery& query);
    std::chrono::year_month_day Today() const { return m_clock.localDate(m_clock.now()); }
    // The registration that the request names.
    std::optional<Refusal> FindNamed(void* request, const Registration*& found) const;

    Reply Refuse(std::string_view request, const Refusal& refusal);
    Reply AnswerRegistered(void* request, const Registration& registration);
    Registration MakeRegistration(void* request) const;
    // Journals, enters, and tells the listeners.
    std::optional<Refusal> Keep(Registration registration);
    // Why the records are not on the disk; empty when they are.
    template <class Records>
    std::string Write(const Records& records) {
        std::string error;
        return m_journal.Append(records, error) ? std::string() : "The server's journal " + error;
    }
    // False when it is none that this server knows.
    bool Replay(std::string_view record);
    void MakeRoom(std::size_t more);
    void Enter(Registration registration);
    void Enter(ExchangeOrder order);

    ServerConfig m_config;
    Journal& m_journal;
    ServerClock m_clock;
    qmx::MessageWriter m_writer;
    std::vector<Registration> m_registrations;
    std::unordered_map<std::string, std::size_t> m_byNumber;
    std::unordered_map<std::string, std::size_t> m_byRequestIdentifier; // of the requests that registered
    RestrictedDays m_restricted;
    std::unordered_map<std::string, ExecutionHistory> m_executions; // by registration number
    std::size_t m_orderCount = 0;                                   // of all registrations
    std::vector<UpdateListener*> m_listeners;
    std::string m_replayError;
};

} // namespace vesk

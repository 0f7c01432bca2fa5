// The trading server, in the process: takes one request's message, and gives what it would send back. Every
// change is in the journal before it is answered or told to a listener.
//
// Thread:  one at a time (the GUI thread). Owner: the caller keeps journal and listeners alive.
// Failure: a request that cannot be served is answered with code and text; nothing is thrown for it.
//
// It knows no wall clock and delivers nothing: RxHub queues, delays and delivers.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/Journal.h"
#include "host/server/OrderChange.h"
#include "host/server/OrderCheck.h"
#include "host/server/Registration.h"
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
    // The next row's bytes, with the registration as it is now. Empty when the registrations looked at in this
    // call gave none: it looks at a few hundred at most.
    std::string NextRow(RowQuery& query);

    // Enters many made-up registrations at once and tells no listener. Why it stopped; empty when all is done.
    std::string Fill(const FillPlan& plan);

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

    Reply ChangeRegistration(const ChangeKind& kind, void* request, const UserIdentity& user);

    Reply Refuse(std::string_view request, const Refusal& refusal);
    Reply AnswerRegistered(const Registration& registration);
    Registration MakeRegistration(void* request) const;
    // Journals, enters, and tells the listeners.
    std::optional<Refusal> Keep(Registration registration);
    void MakeRoom(std::size_t more);
    void Enter(Registration registration);

    ServerConfig m_config;
    Journal& m_journal;
    ServerClock m_clock;
    qmx::MessageWriter m_writer;
    std::vector<Registration> m_registrations;
    std::unordered_map<std::string, std::size_t> m_byNumber;
    std::unordered_map<std::string, std::size_t> m_byRequestIdentifier; // of the requests that registered
    std::vector<UpdateListener*> m_listeners;
    std::string m_replayError;
};

// The number of the registration that is entered as the `sequence`th.
std::string RegistrationNumber(std::chrono::year_month_day date, std::size_t sequence);

} // namespace vesk

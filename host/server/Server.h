// The trading server, in the process: takes one request's message, and gives what it would send back.
//
// Thread:  one at a time (the GUI thread). Owner: the caller keeps journal and listeners alive.
// Failure: a request that cannot be served is answered with code and text; nothing is thrown for it.
//
// It knows no wall clock and delivers nothing: RxHub queues, delays and delivers.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/Journal.h"
#include "host/server/OrderCheck.h"
#include "host/server/Registration.h"
#include "host/server/ServerConfig.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

// Who is logged in on the connection that a request came by.
struct UserIdentity {
    std::string loginId;
    std::string peerIdA;
    std::string peerIdB;
};

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

class Server {
public:
    // `records` are the journal's, replayed here.
    Server(ServerConfig config, Journal& journal, const std::vector<std::string>& records, ServerClock clock);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The answers' bytes, in the order they are sent. `request` is a message handle.
    std::vector<std::string> Handle(void* request, const UserIdentity& user);

    void AddListener(UpdateListener& listener);
    void RemoveListener(UpdateListener& listener);

    const ServerConfig& Config() const { return m_config; }
    // Faults may be switched while running.
    ServerConfig& Config() { return m_config; }

    // In order of registration.
    const std::vector<Registration>& Registrations() const { return m_registrations; }
    // Null when the number is unknown.
    const Registration* Find(std::string_view registrationNumber) const;
    // Which journal record this server could not read; it then refuses every request. Empty when all is well.
    const std::string& ReplayError() const { return m_replayError; }

private:
    using Answers = std::vector<std::string>;
    struct Handler;
    static const Handler kHandlers[];

    Answers Dispatch(std::string_view name, void* request, const UserIdentity& user);
    Answers AnswerOperationMode(void* request, const UserIdentity& user);
    Answers AddRegistration(void* request, const UserIdentity& user);

    Answers Refuse(std::string_view request, const Refusal& refusal);
    Answers AnswerRegistered(const Registration& registration);
    Registration MakeRegistration(void* request) const;
    bool Keep(Registration registration, Refusal& refusal);
    void Enter(Registration registration);

    ServerConfig m_config;
    Journal& m_journal;
    ServerClock m_clock;
    qmx::MessageWriter m_writer;
    std::vector<Registration> m_registrations;
    std::unordered_map<std::string, std::size_t> m_byNumber;
    std::unordered_map<std::string, std::size_t> m_byRequestIdentifier;
    std::vector<UpdateListener*> m_listeners;
    std::string m_replayError;
};

} // namespace vesk

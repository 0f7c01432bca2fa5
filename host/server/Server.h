// The trading server, in the process: takes one request's message, and gives what it would send back. Every
// change is in the journal before it is answered or told to a listener.
//
// Thread:  one at a time (the GUI thread). Owner: the caller keeps journal and listeners alive.
// Failure: a request that cannot be served is answered with code and text; nothing is thrown for it.
//
// It knows no wall clock and delivers nothing: a ServerSession queues, delays and sends.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "host/server/JournalRenewal.h"
#include "host/server/OrderRules.h"
#include "host/server/Queries.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// What a request is answered with: messages that are ready, or rows to be asked for one after the other.
struct Reply {
    std::vector<std::string> answers{};
    std::optional<RowQuery> rows{};
    bool isCut = false;  // the connection that asked is to be cut,
    bool isLost = false; // before the request has come, and what came behind it
};

class Server {
public:
    // `records` are the journal's, replayed here.
    Server(ServerConfig config, vesk::Journal& journal, const std::vector<std::string_view>& records,
           ServerClock clock);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The answers' bytes, in the order they are sent. `request` is a message handle. Under `sentAs` it comes
    // again when its answer was lost: a change is then not made twice, but answered as the first time.
    Reply Handle(void* request, const UserIdentity& user, std::string_view sentAs = {});
    // From here on changes are put on the disk and told together. Nothing that they made may be told before.
    void Hold();
    // Ends that. When what was changed meanwhile cannot be put on the disk, that is undone, and the answer says
    // why: the server then holds what the journal does.
    std::string Release();
    // In place of the answer to a request that was undone.
    Reply HandleUndone(void* request, const UserIdentity& user, std::string_view sentAs,
                       const std::string& fault);
    // With a replay error it refuses every request.
    ServerJournal& Journal() { return m_journal; }
    JournalUpkeep& Upkeep() { return m_upkeep; }
    const JournalUpkeep& Upkeep() const { return m_upkeep; }

    // The next row's bytes, with the record as it is now. Empty when the registrations looked at in this call
    // gave none: it looks at a few hundred at most.
    std::string NextRow(RowQuery& query) { return m_queries.NextRow(query); }

    // Enters registrations that nobody asked for, and tells no listener. Why it could not; empty when it is
    // done.
    std::string EnterMadeUp(std::vector<Registration> batch);

    // `knows` says whom orders may be for; without it they may be for anybody.
    void SetClients(std::function<bool(std::string_view account)> knows) { m_knows = std::move(knows); }

    // An answer that refuses, ready to be sent.
    static std::string Refusal(qmx::MessageWriter& writer, void* request, const ServerRefusal& refusal,
                               bool hasSerial = true);

    void AddListener(UpdateListener& listener) { m_registrations.AddListener(listener); }
    void RemoveListener(UpdateListener& listener) { m_registrations.RemoveListener(listener); }

    const ServerConfig& Config() const { return m_config; }
    // Faults may be switched while running.
    ServerConfig& Config() { return m_config; }
    const Clockwork& Clock() const { return m_clock; }
    Clockwork& Clock() { return m_clock; }

    const Registrations& Held() const { return m_registrations; }

private:
    struct Handler;
    static const Handler kHandlers[];

    void Replay(const std::vector<std::string_view>& records);
    // Holds what the journal does.
    void Undo();

    Reply Dispatch(std::string_view name, void* request, const UserIdentity& user, std::string_view sentAs);
    Reply AnswerOperationMode(void* request, const UserIdentity& user);
    Reply AddRegistration(void* request, const UserIdentity& user, std::string_view sentAs);
    Reply StartQuery(std::string_view name, void* request, const UserIdentity& user);

    Reply SetRestrictedDays(void* request, const UserIdentity& user);
    Reply AnswerRestrictedDays(void* request, const UserIdentity& user);
    Reply ChangeRegistration(const ChangeKind& kind, void* request, const UserIdentity& user,
                             std::string_view sentAs);

    Reply Refuse(void* request, const ServerRefusal& refusal);
    Reply AnswerRegistered(void* request, const Registration& registration);
    // Sets the next execution day, journals, enters, and tells the listeners.
    std::optional<ServerRefusal> Keep(Registration registration);

    ServerConfig m_config;
    ServerJournal m_journal;
    Registrations m_registrations;
    Clockwork m_clock;
    Queries m_queries{m_registrations, m_clock};
    JournalUpkeep m_upkeep{m_journal, m_clock, m_registrations};
    qmx::MessageWriter m_writer;
    std::function<bool(std::string_view)> m_knows;
};

} // namespace vesk

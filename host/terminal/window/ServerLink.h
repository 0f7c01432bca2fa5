// The trading server that the terminal works with, in the terminal itself or reached by TCP, and the client
// through which the plug-ins reach it.
//
// Thread: one (the GUI thread).
#pragma once

#include "host/server/MarketServer.h"
#include "host/server/net/RxClient.h"
#include "host/terminal/core/TerminalState.h"
#include "host/terminal/core/WaitingRequests.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

struct LinkStatus {
    std::string text;
    bool isTrouble = false;
    bool operator==(const LinkStatus&) const = default;
};

// Called from Pump; none of them may pump.
struct LinkEvents {
    std::function<void(const std::string& line)> say; // for the log
    std::function<void()> restrictedDays;             // may have changed
};

class ServerLink {
public:
    // Starts a server with this journal in the terminal itself. What the user should know about the start is
    // added to `notes`. Without a journal that can be opened there is no server. The state outlives the link:
    // its prices are asked for at every execution.
    ServerLink(const TerminalState& state, const std::string& journalFile, LinkEvents events,
               std::vector<std::string>& notes);
    // Connects to a server of its own, to which the file proves the user.
    ServerLink(const ServerAddress& address, const std::string& secretsFile, UserIdentity user,
               LinkEvents events);
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;
    ~ServerLink() = default;

    RxControl* GetControl(int kind, CKeloRxNotifierBase* notifier) {
        return m_client ? m_client->Get(kind, notifier) : nullptr;
    }
    void DestroyControl(RxControl* control) {
        if (m_client) m_client->Destroy(control);
    }
    std::size_t LiveControls() const { return m_client ? m_client->LiveControls() : 0; }
    // The clock of the requests' times.
    static std::int64_t NowMs();
    std::size_t RequestCount() const { return m_client ? m_client->Requests().Size() : 0; }
    std::size_t AnswersDue() const { return m_client ? m_client->AnswersDue() : 0; }
    WaitingCounts CountRequests() const { return m_client ? CountWaiting(*m_client) : WaitingCounts{}; }
    std::vector<std::uint64_t> Requests() const {
        return m_client ? m_client->Requests().Numbers() : std::vector<std::uint64_t>();
    }
    std::optional<WaitingRequest> FindRequest(std::uint64_t number) const {
        return m_client ? m_client->Requests().Find(number) : std::nullopt;
    }
    bool Withdraw(std::uint64_t number) { return m_client && m_client->Withdraw(number); }

    // Does some of what there is to do, and delivers.
    void Pump();
    // Sends and receives, but delivers nothing, until nothing waits or so long.
    void Flush(std::chrono::milliseconds longest);
    // When requests still wait: sends what it can within a moment, and ends the connection so that it arrives.
    void Leave();
    // Everything that is due has been executed, and everything is delivered.
    bool IsIdle() const;
    LinkStatus Status() const { return m_status; }
    // The date of the server's clock, as 05-Mar-2027; empty while it is not known.
    std::string Date() const;
    // The dates that the server restricts, each as yyyymmdd.
    std::vector<std::uint32_t> RestrictedDates() const { return m_restricted; }
    // Its number; empty without any, or when only the server knows.
    std::string LatestRegistration() const;
    // A line as ServerCommands takes. `told` is called once: now, or from Pump.
    void Command(const std::string& line, std::function<void(const Told&)> told);

private:
    void StartServer(const TerminalState& state, JournalOpening opening, ServerConfig config,
                     std::vector<std::string>& notes);
    void Connect(std::unique_ptr<Channel> channel, UserIdentity user);
    void OnState(LinkState state, const std::string& text);
    bool HasDue() const;
    void ExecuteDue();

    const std::string m_name; // host:port; empty for the embedded server
    const LinkEvents m_events;
    LinkStatus m_status;
    std::vector<std::uint32_t> m_restricted;
    std::unique_ptr<MarketServer> m_server; // the embedded one, which the client works on to its end
    std::size_t m_executed = 0;             // instalments that are not yet told of
    std::optional<RxClient> m_client{};     // empty: there is no server, and no control
};

} // namespace vesk

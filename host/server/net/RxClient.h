// The host's request and stream controls, whose server is at the other end of a channel.
//
// It connects by itself, and again after growing pauses when the connection is lost. Everything then goes on
// where it was: controls are opened anew, subscriptions made again with what was missed meanwhile, and requests
// that were not answered in full are sent again. That is safe: the server knows an order and a change of a
// registration again, and of a query the rows that already came are left out. A command is not sent again: what
// it does, it would do twice. A request that never left may be withdrawn: it is then answered as refused.
//
// Thread:  one (the GUI thread); all calls but those to the notifiers return at once. A notifier may pump again
//          (a message box runs the loop), send, subscribe, and destroy any control, its own included.
// Owner:   the client owns the controls; notifiers outlive theirs.
// Failure: whatever the server sends, at worst the connection is lost; the state says why. A stranger's control
//          pointer is ignored; an answer whose control is gone is dropped.
#pragma once

#include "host/server/net/ClientConnection.h"
#include "host/server/net/Deliveries.h"
#include "host/server/net/SentRequests.h"
#include "sdk/RxControl.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace vesk {

class RxClient final : private ConnectionListener {
public:
    // Called from Pump at each change; `text` is for the user. It must not pump.
    using StateChanged = std::function<void(LinkState state, const std::string& text)>;

    // Called from Pump when the server's state is told, which is before the answers of what changed it are
    // delivered. It must not pump.
    using StateTold = std::function<void(const net::ServerState& state)>;
    // Called from Pump once; it may pump. It is not called when the client ends before.
    using CommandTold = std::function<void(const Told& told)>;

    // `pumpTime` is about how long a pump takes, so that the window stays responsive.
    RxClient(std::unique_ptr<Channel> channel, UserIdentity user, StateChanged changed = {},
             StateTold stateTold = {}, std::chrono::milliseconds pumpTime = std::chrono::milliseconds(12));
    RxClient(const RxClient&) = delete;
    RxClient& operator=(const RxClient&) = delete;
    ~RxClient();

    // `kind` as RxControlKind. Null for an unknown kind or without a notifier.
    RxControl* Get(int kind, CKeloRxNotifierBase* notifier);
    void Destroy(RxControl* control);
    std::size_t LiveControls() const { return m_controls.size(); }
    // Sends, receives and delivers some of what waits; `nowMs` never goes back. The number of notifier calls
    // made by this call, nested pumps not counted.
    std::size_t Pump(std::int64_t nowMs);
    // Requests, commands and deliveries that still wait, a running query as one.
    std::size_t Waiting() const;
    LinkState State() const { return m_connection.State(); }

    // Sends and receives without a call to a notifier. Whether another call may do more at once.
    bool Flush(std::int64_t nowMs);
    // Ends the connection so that what has been sent arrives: waits a moment for the server to take it.
    // The next call begins another one.
    void Leave() { m_connection.Leave(); }

    const SentRequests& Requests() const { return m_requests; }
    // With them the answers that no notifier has been told yet.
    std::size_t AnswersDue() const;
    // Takes back a request that never left. Its notifier gets a refusal from the next Pump. False when it has
    // left, or does not wait any more.
    bool Withdraw(std::uint64_t number);

    // A line as ServerCommands has them.
    void Command(std::string line, CommandTold told);
    // The server's state as it was told last, on this connection or the one before.
    const net::ServerState& Server() const { return m_serverState; }

private:
    class Control;
    struct Step;
    static const Step kSteps[];

    void OnWelcomed() override;
    void OnFrame(const Frame& frame) override;
    void OnLost() override;
    void OnStateChanged(LinkState state, const std::string& text) override;
    template <class Said>
    bool TakeAs(std::string_view payload);
    // An answer, or the end of them.
    template <class Said>
    void TakeAnswer(Said&& said);
    void On(net::Response&& said) { TakeAnswer(std::move(said)); }
    void On(const net::RequestDone& said) { TakeAnswer(said); }
    void On(const net::Update& said) { m_deliveries.Keep(said.control, true, said.bytes); }
    void On(const net::Unsubscribed& said);
    void On(net::CommandDone&& said);
    void On(net::ServerState&& said);

    std::uint64_t Send(std::uint32_t control, std::string_view bytes);
    // Puts requests into the output while that has room, so that the others can still be withdrawn.
    void SayRequests();
    // Whether another one may bring more at once.
    bool Exchange();
    void TellLater(CommandTold command, Told told);
    bool Deliver(const Deliveries::Delivery& delivery);

    const StateChanged m_changed;
    const StateTold m_stateTold;
    const std::chrono::milliseconds m_pumpTime;
    net::ServerState m_serverState;
    ClientConnection m_connection;
    bool m_wasConnected = false;
    std::map<std::uint32_t, std::unique_ptr<Control>> m_controls;
    SentRequests m_requests;
    std::map<std::uint64_t, CommandTold> m_commands; // that the server has not told of
    Deliveries m_deliveries;
    std::uint64_t m_lastRequest = 0; // or command
    std::uint64_t m_lastSubscription = 0;
    std::uint32_t m_lastControl = 0; // never used again, so a late answer finds nobody
};

} // namespace vesk

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

#include "host/server/net/Channel.h"
#include "sdk/RxControl.h"

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum class LinkState { connecting, connected, lost };

// A request without its last answer. The bytes are its message, and the client's until the next call.
struct WaitingRequest {
    std::uint64_t number = 0;
    std::string_view bytes{};
    std::int64_t sinceMs = 0;
    bool hasLeft = false; // on this connection or one before, perhaps only in part
};

class RxClient final {
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
    LinkState State() const { return m_state; }

    // Sends and receives without a call to a notifier. Whether another call may do more at once.
    bool Flush(std::int64_t nowMs);
    // Ends the connection so that what has been sent arrives: waits a moment for the server to take it.
    // The next call begins another one.
    void Leave();

    // The numbers of the requests that wait, the oldest first.
    std::vector<std::uint64_t> Requests() const;
    std::size_t RequestCount() const { return m_requests.size(); }
    // With them the answers that no notifier has been told yet.
    std::size_t AnswersDue() const;
    // Nothing when the request does not wait any more.
    std::optional<WaitingRequest> FindRequest(std::uint64_t number) const;
    // Takes back a request that never left. Its notifier gets a refusal from the next Pump. False when it has
    // left, or does not wait any more.
    bool Withdraw(std::uint64_t number);

    // A line as ServerCommands has them.
    void Command(std::string line, CommandTold told);
    // The server's state as it was told last, on this connection or the one before.
    const net::ServerState& Server() const { return m_serverState; }

private:
    class Control;
    struct Unanswered {
        net::ControlRequest request;
        std::int64_t sinceMs;
        bool hasLeft = false;    // on a connection before
        std::size_t answers = 0; // that came
        std::size_t toSkip = 0;  // of those to come, since they came before
        std::string skipped{};   // the last one
    };
    struct Delivery {
        std::uint32_t control;
        bool isStream;
        std::string bytes;
        std::function<void()> tell{}; // instead of all that
    };
    struct Step;
    static const Step kSteps[];

    template <class Said>
    bool TakeAs(std::string_view payload);
    void On(const net::Challenge& said);
    void On(const net::Welcome& said);
    void On(const net::ConnectionRefused& said);
    void On(net::Response&& said);
    void On(const net::RequestDone& said);
    void On(net::Update&& said);
    void On(const net::Unsubscribed& said);
    void On(net::CommandDone&& said);
    void On(net::ServerState&& said);

    std::uint64_t Send(std::uint32_t control, std::string_view bytes);
    // Sends it when there is a server; the next connection begins with all of it anyway.
    template <class Said>
    void Say(Said said) {
        if (m_state == LinkState::connected)
            static_cast<void>(net::Append(m_output, std::move(said), m_channel->Sums()));
    }
    // Puts requests into the output while that has room, so that the others can still be withdrawn.
    void SayRequests();
    bool HasLeft(const Unanswered& one) const { return one.hasLeft || one.request.number <= m_lastSaid; }
    void Connect();
    void ConnectWhenDue(std::int64_t nowMs);
    // Whether another one may bring more at once.
    bool Exchange();
    void TakeFrames();
    void Take(const Frame& frame);
    void Lose(const std::string& why);
    void Change(LinkState state, const std::string& text);
    void TellLater(CommandTold command, Told told);
    bool HasRoom() const;
    void Keep(Delivery delivery);
    bool DeliverNext();
    bool Deliver(const Delivery& delivery);

    const std::unique_ptr<Channel> m_channel;
    const UserIdentity m_user;
    const StateChanged m_changed;
    const StateTold m_stateTold;
    const std::chrono::milliseconds m_pumpTime;
    const std::uint64_t m_identity;
    net::ServerState m_serverState;
    LinkState m_state = LinkState::lost;
    FrameReader m_reader;
    std::string m_output;
    std::size_t m_sent = 0; // of the output
    std::int64_t m_nowMs = 0;
    std::int64_t m_againAtMs = 0; // when to connect, or to give up connecting
    std::int64_t m_pauseMs = 0;
    bool m_isChallenged = false; // on this connection
    bool m_wasConnected = false;
    std::map<std::uint32_t, std::unique_ptr<Control>> m_controls;
    std::map<std::uint64_t, Unanswered> m_requests;
    std::uint64_t m_lastSaid = 0; // request on this connection: those behind it are not in the output
    std::size_t m_requestBytes = 0;
    std::map<std::uint64_t, CommandTold> m_commands; // that the server has not told of
    std::deque<Delivery> m_deliveries;
    std::size_t m_deliveryBytes = 0;
    std::uint64_t m_lastRequest = 0; // or command
    std::uint32_t m_lastControl = 0; // never used again, so a late answer finds nobody
};

} // namespace vesk

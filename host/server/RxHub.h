// The host's request and stream controls over the server, for one logged-in user.
//
// Requests wait in a queue until they are pumped; answers and stream messages are delivered one after
// another from the pump, never from inside SendRequest.
//
// Thread:   one (the GUI thread). A notifier may pump again (a message box runs the loop), send, subscribe,
//           and destroy any control, its own included.
// Owner:    the hub owns the controls; notifiers outlive theirs. Lifetime: the server outlives the hub.
// Failure:  a stranger's control pointer is ignored; an answer whose control is gone is dropped.
#pragma once

#include "host/server/Server.h"
#include "sdk/RxControl.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

class RxHub final : private UpdateListener {
public:
    RxHub(Server& server, UserIdentity user);
    RxHub(const RxHub&) = delete;
    RxHub& operator=(const RxHub&) = delete;
    ~RxHub();

    // `kind` as RxControlKind. Null for an unknown kind or without a notifier.
    RxControl* Get(int kind, CKeloRxNotifierBase* notifier);
    void Destroy(RxControl* control);
    std::size_t LiveControls() const { return m_controls.size(); }

    // Lets the server handle the requests that are due and delivers what waits; `nowMs` never goes back.
    // The number of notifier calls made by this call, nested pumps not counted.
    std::size_t Pump(std::int64_t nowMs);
    // Requests and deliveries that still wait.
    std::size_t Waiting() const { return m_requests.size() + m_deliveries.size(); }

private:
    class Control;
    using ControlId = std::uint64_t; // never reused, so a late answer finds nobody

    struct Request {
        ControlId sender;
        std::string bytes;
    };
    struct Delivery {
        ControlId receiver;
        bool isStream;
        std::string bytes;
    };

    void OnUpdate(const Registration& registration) override;
    std::uint64_t Queue(ControlId sender, std::string_view request, std::string_view bytes);
    void HandleDueRequests();
    bool Deliver(const Delivery& delivery);

    Server& m_server;
    UserIdentity m_user;
    std::map<ControlId, std::unique_ptr<Control>> m_controls;
    std::map<std::pair<std::int64_t, std::uint64_t>, Request> m_requests; // by due time, then number
    std::deque<Delivery> m_deliveries;
    qmx::MessageWriter m_writer;
    std::int64_t m_nowMs = 0;
    std::uint64_t m_lastRequest = 0;
    ControlId m_lastControl = 0;
};

} // namespace vesk

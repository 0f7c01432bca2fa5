// The host's request and stream controls over the server, for one logged-in user.
//
// Requests wait in a queue until they are pumped; answers and stream messages are delivered one after
// another from the pump, never from inside SendRequest. A query stands in that queue too until its last row is
// delivered, so answers and updates keep their order; its rows are made when their turn comes, and show a
// registration as it is then.
//
// Thread:   one (the GUI thread). A notifier may pump again (a message box runs the loop), send, subscribe,
//           and destroy any control, its own included.
// Owner:    the hub owns the controls; notifiers outlive theirs. Lifetime: the server outlives the hub.
// Failure:  a stranger's control pointer is ignored; an answer whose control is gone is dropped.
#pragma once

#include "host/server/ControlHub.h"
#include "host/server/Server.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vesk {

// How much one pump does: this many turns (a request and a delivery each), and more until the time is over.
struct PumpBudget {
    std::size_t leastTurns = 1;
    std::chrono::milliseconds time{12};
};

class RxHub final : public ControlHub, private UpdateListener {
public:
    RxHub(Server& server, UserIdentity user, PumpBudget budget = {});
    ~RxHub() override;

    RxControl* Get(int kind, CKeloRxNotifierBase* notifier) override;
    void Destroy(RxControl* control) override;
    std::size_t LiveControls() const override { return m_controls.size(); }
    // Lets the server handle the requests that are due and delivers what waits, until the budget is used up.
    std::size_t Pump(std::int64_t nowMs) override;
    std::size_t Waiting() const override { return m_requests.size() + m_deliveries.size(); }

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
        std::string bytes{};
        std::optional<RowQuery> rows{}; // instead of the bytes
    };
    class Turns;

    void OnUpdate(const Registration& registration) override;
    std::uint64_t Queue(ControlId sender, std::string_view request, std::string_view bytes);
    bool RequestIsDue() const;
    void HandleNextRequest();
    void HandleRequest(const Request& request);
    // The bytes are empty when a query's turn gave no row.
    Delivery TakeNext();
    bool Deliver(const Delivery& delivery);

    Server& m_server;
    UserIdentity m_user;
    PumpBudget m_budget;
    std::map<ControlId, std::unique_ptr<Control>> m_controls;
    std::map<std::pair<std::int64_t, std::uint64_t>, Request> m_requests; // by due time, then number
    std::deque<Delivery> m_deliveries;
    qmx::MessageWriter m_writer;
    std::int64_t m_nowMs = 0;
    std::uint64_t m_lastRequest = 0;
    ControlId m_lastControl = 0;
};

} // namespace vesk

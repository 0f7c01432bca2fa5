// What one session's stream controls are subscribed to, and the updates that wait to be sent to them.
//
// Thread: the server's. Lifetime: the server outlives it.
#pragma once

#include "host/server/Server.h"
#include "host/server/net/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

inline constexpr std::size_t kMostSubscriptionFields = 16;

// Why it cannot be made beside so many others of the same control; null when it can.
const char* FaultOf(const Subscription& subscription, std::size_t others);
// Whether it asks for what belongs to another than the user.
bool IsForeign(const Subscription& subscription, const UserIdentity& user);
// Never what the user may not see.
bool Matches(const Subscription& subscription, const Registration& registration, const UserIdentity& user);

class Streams final : private UpdateListener {
public:
    Streams(Server& server, UserIdentity user);
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams();

    // Why it cannot; empty when it is made. A renewed one gets what it may have missed.
    std::string Subscribe(std::uint32_t control, const Subscription& subscription, bool isRenewed);
    // Ends the control's subscriptions; what waits for it is dropped.
    void Stop(std::uint32_t control);
    void StopAll();
    std::size_t Subscriptions() const;
    std::size_t Waiting() const { return m_updates.size(); }
    net::Update TakeNext();
    std::size_t CatchUps() const { return m_catchUps.size(); }
    // Looks at a few hundred registrations at most; nothing when those gave none.
    std::optional<net::Update> NextMissed();

private:
    // Registrations that a renewed subscription may have missed.
    struct CatchUp {
        std::uint32_t control;
        Subscription fields;
        std::size_t next, end;
    };

    void OnUpdate(const Registration& registration) override;

    Server& m_server;
    const UserIdentity m_user;
    std::map<std::uint32_t, std::vector<Subscription>> m_controls; // that have one
    std::deque<net::Update> m_updates;
    std::deque<CatchUp> m_catchUps;
    qmx::MessageWriter m_writer;
};

} // namespace vesk

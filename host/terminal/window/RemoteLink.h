// A server of its own, reached by TCP.
#pragma once

#include "host/server/net/RemoteHub.h"
#include "host/terminal/window/ServerLink.h"

namespace vesk {

class RemoteLink final : public ServerLink {
public:
    RemoteLink(ServerAddress address, UserIdentity user, LinkEvents events);

    void Pump() override;
    bool IsIdle() const override;
    LinkStatus Status() const override { return m_status; }
    std::string Date() const override;
    std::vector<std::uint32_t> RestrictedDates() const override;
    void Command(const std::string& line, std::function<void(const Told&)> told) override;

private:
    void OnState(LinkState state, const std::string& text);
    RemoteHub& Hub() { return static_cast<RemoteHub&>(*m_hub); }
    const RemoteHub& Hub() const { return static_cast<const RemoteHub&>(*m_hub); }

    const std::string m_name; // host:port
    const LinkEvents m_events;
    LinkStatus m_status;
    std::vector<std::uint32_t> m_restricted;
};

} // namespace vesk

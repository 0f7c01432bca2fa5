#include "host/terminal/window/RemoteLink.h"

#include "host/server/schedule/Schedule.h"

#include <windows.h>

#include <utility>

namespace vesk {

RemoteLink::RemoteLink(ServerAddress address, UserIdentity user, LinkEvents events)
    : m_name(address.host + ":" + std::to_string(address.port)),
      m_events(std::move(events)), m_status{m_name + " connecting"} {
    m_hub = std::make_unique<RemoteHub>(
        std::move(address), std::move(user),
        [this](LinkState state, const std::string& text) { OnState(state, text); },
        [this](const net::ServerState& state) {
            if (std::exchange(m_restricted, state.restricted) != state.restricted) m_events.restrictedDays();
        });
}

// The attempts to come back change nothing that is shown, and are not told one by one.
void RemoteLink::OnState(LinkState state, const std::string& text) {
    if (state == LinkState::connecting) return;
    const bool isLost = state == LinkState::lost;
    LinkStatus status{m_name + (isLost ? " not connected" : " connected"), isLost};
    if (status == m_status) return;
    m_status = std::move(status);
    m_events.say("Trading server " + m_name + ": " + text + (isLost ? "; trying again" : ""));
}

void RemoteLink::Pump() {
    m_hub->Pump(static_cast<std::int64_t>(GetTickCount64()));
}

bool RemoteLink::IsIdle() const {
    return Hub().State() == LinkState::connected && !Hub().Server().hasDue && m_hub->Waiting() == 0;
}

std::string RemoteLink::Date() const {
    const std::uint32_t number = Hub().Server().date;
    if (number == 0) return {};
    return RecordDate(DateOf(number));
}

std::vector<std::uint32_t> RemoteLink::RestrictedDates() const {
    return m_restricted;
}

void RemoteLink::Command(const std::string& line, std::function<void(const Told&)> told) {
    Hub().Command(line, std::move(told));
}

} // namespace vesk

// A server in the terminal itself, with its journal and clock.
#pragma once

#include "host/server/Server.h"
#include "host/server/journal/Journal.h"
#include "host/terminal/core/TerminalState.h"
#include "host/terminal/window/ServerLink.h"

#include <optional>

namespace vesk {

class EmbeddedLink final : public ServerLink {
public:
    // What the user should know about the start is added to `notes`. Without a journal that can be opened
    // there is no server. The state outlives the link: its prices are asked for at every execution.
    EmbeddedLink(const TerminalState& state, const std::string& journalFile, LinkEvents events,
                 std::vector<std::string>& notes);
    ~EmbeddedLink() override;

    void Pump() override;
    bool IsIdle() const override;
    LinkStatus Status() const override;
    std::string Date() const override;
    std::vector<std::uint32_t> RestrictedDates() const override;
    std::string LatestRegistration() const override;
    void Command(const std::string& line, std::function<void(const Told&)> told) override;

private:
    void StartServer(JournalOpening opening, ServerConfig config, std::vector<std::string>& notes);

    const TerminalState& m_state;
    const UserIdentity m_user;
    const LinkEvents m_events;
    std::size_t m_executed = 0; // instalments that are not yet told of
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<Server> m_server;
    std::optional<ServerCommands> m_commands;
};

} // namespace vesk

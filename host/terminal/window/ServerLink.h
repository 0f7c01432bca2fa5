// The embedded server with its journal and clock, and the hub through which the plug-ins reach it.
#pragma once

#include "host/server/Journal.h"
#include "host/server/OtherSession.h"

#include <memory>
#include <string>
#include <vector>

namespace vesk {

class ServerLink {
public:
    // What the user should know about the start is added to `notes`. Without a journal that can be opened
    // there is no server: GetControl then gives null.
    ServerLink(const std::string& configFile, const std::string& journalFile, UserIdentity user,
               std::vector<std::string>& notes);

    RxControl* GetControl(int kind, CKeloRxNotifierBase* notifier);
    void DestroyControl(RxControl* control);
    std::size_t LiveControls() const { return m_hub ? m_hub->LiveControls() : 0; }
    void Pump();
    void AdvanceClock(int days) { m_clockOffset += std::int64_t{days} * 86'400; }
    // Enters so many made-up registrations, of the user and of another session's user. Why it stopped; empty
    // when all is done. The plug-ins see them with their next query.
    std::string Fill(std::size_t count, SampleMarket market);
    // Another session of the user's firm places so many orders. The number that was registered.
    std::size_t PlaceOthersOrders(std::size_t count, SampleMarket market);
    const std::string& JournalFile() const { return m_journalFile; }

private:
    UserIdentity OtherUser() const;

    std::string m_journalFile;
    UserIdentity m_user;
    std::int64_t m_clockOffset = 0; // seconds that the server is ahead of the machine
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<RxHub> m_hub;
};

} // namespace vesk

// The embedded server with its journal and clock, and the hub through which the plug-ins reach it.
#pragma once

#include "host/server/Journal.h"
#include "host/server/OtherSession.h"
#include "host/server/RxHub.h"
#include "host/terminal/core/ScripMaster.h"

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
    // Why it did not; empty when all are entered. The next listing shows them.
    std::string Fill(std::size_t count, SampleMarket market);
    // As another user of the same branch; the number of orders that the server took.
    std::size_t PlaceOtherOrders(std::size_t count, SampleMarket market);
    // Empty without any.
    std::string LatestRegistration() const;
    // Places an exchange order for each of the last past instalments that have none, near the scrip's price.
    // Why it did not; empty when all are placed.
    std::string Execute(std::size_t count, const std::string& number, const ScripMaster& master);
    // Those that are restricted, each as yyyymmdd.
    std::vector<std::uint32_t> RestrictedDates() const;
    const std::string& JournalFile() const { return m_journalFile; }

private:
    UserIdentity OtherUser() const;

    std::string m_journalFile;
    UserIdentity m_user;
    std::int64_t m_clockOffset = 0; // seconds that the server is ahead of the machine
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<RxHub> m_hub;
    std::unique_ptr<OtherSession> m_other; // once it was needed
};

} // namespace vesk

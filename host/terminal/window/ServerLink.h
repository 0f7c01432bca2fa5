// The embedded server with its journal and clock, and the hub through which the plug-ins reach it.
#pragma once

#include "host/server/Journal.h"
#include "host/server/OtherSession.h"
#include "host/server/RxHub.h"
#include "host/terminal/core/ScripMaster.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vesk {

class ServerLink {
public:
    // What the user should know about the start is added to `notes`. Without a journal that can be opened
    // there is no server: GetControl then gives null. `nonTrading` as TradingCalendar::Dates has them.
    ServerLink(const std::string& configFile, const std::string& journalFile, UserIdentity user,
               std::span<const std::uint32_t> nonTrading, std::vector<std::string>& notes);

    RxControl* GetControl(int kind, CKeloRxNotifierBase* notifier);
    void DestroyControl(RxControl* control);
    std::size_t LiveControls() const { return m_hub ? m_hub->LiveControls() : 0; }
    // Executes some of the instalments that are due, and delivers. What became of the due ones, once none is
    // left; else empty.
    std::string Pump();
    // Why it did not.
    std::string AdvanceClock(int days);
    std::string AdvanceToNextInstalment();
    // Every instalment that is due has been executed, and everything is delivered.
    bool IsIdle() const;
    // Of the server's clock, as 05-Mar-2027.
    std::string Date() const;
    // Fills orders near the last prices there; the master outlives the link.
    void UsePrices(const ScripMaster& master);
    // Why it did not; empty when all are entered. The next listing shows them.
    std::string Fill(std::size_t count, SampleMarket market);
    // As another user of the same branch; the number of orders that the server took.
    std::size_t PlaceOtherOrders(std::size_t count, SampleMarket market);
    // Empty without any.
    std::string LatestRegistration() const;
    // Places an exchange order for each of the last past instalments that have none, near the scrip's price.
    // Why it did not; empty when all are placed.
    std::string Execute(std::size_t count, const std::string& number);
    // What is played on this request from now on.
    void SetFault(const std::string& request, const RequestFault& fault);
    // Those that are restricted, each as yyyymmdd.
    std::vector<std::uint32_t> RestrictedDates() const;
    const std::string& JournalFile() const { return m_journalFile; }

private:
    UserIdentity OtherUser() const;
    std::int64_t PriceOf(const Registration& registration) const;

    std::string m_journalFile;
    UserIdentity m_user;
    const ScripMaster* m_master = nullptr;
    std::size_t m_executed = 0; // instalments that are not yet told of
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<RxHub> m_hub;
    std::unique_ptr<OtherSession> m_other; // once it was needed
};

} // namespace vesk

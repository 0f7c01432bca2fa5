// What every request needs: the connection library's handles, who is logged in and how, the server's
// operation mode, and the host's callbacks. One for the plug-in, owned by the control block.
#pragma once

#include "plugin/base/Frequencies.h"
#include "plugin/base/Notices.h"
#include "plugin/base/RunCalendar.h"
#include "plugin/messaging/HostCallbacks.h"
#include "sdk/CString.h"
#include "sdk/Qmx.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace planfold {

class LiveRegistrations;
class OrderRecord;

// The process-wide strings, which outlive the session.
struct Identity {
    std::string& loginId;
    std::string& peerIdA;
    std::string& peerIdB;
    std::string& activeClient;
};

// Tag and value under which the server knows the user.
struct LoginIdentity {
    std::uint32_t tag;
    std::string_view value;
};

class Session {
public:
    Session(HostLookup hostLookup, const Identity& identityStrings, StringManager& manager,
            OrderRecord& orderRecord)
        : lookup(std::move(hostLookup)), identity(identityStrings), strings(manager), record(orderRecord) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    // Closes both handles.
    ~Session();

    // Opens both handles anew, over the old ones, which stay open. Each failure is one text.
    void OpenHandles(Pass pass, Notices& notices);

    // Begins an empty message. False when the library refuses.
    bool StartMessage();
    // Tells whether the message begun at a generation is still the one in the buffer: a host callback may
    // run a message loop, in which another request is built or the handles are opened anew.
    std::uint64_t Generation() const { return m_generation; }

    // The plug-in was told to exit while a call was under way: nothing more is sent or answered.
    void End() { m_ended = true; }
    bool Ended() const { return m_ended; }

    LoginIdentity GetLoginIdentity() const;
    // Asks the host; true when a client is active.
    bool GetActiveClient(Pass pass, std::string& client);
    // A fresh unique identifier for an order's request; none when the host gives none.
    std::optional<std::string> FreshIdentifier(Pass pass) const;
    // One line of the host's tabbed log; nothing when the host has none.
    void Log(Pass pass, std::string_view text) const;
    // The same of a line that is made only for a host that has one.
    template <std::invocable Make>
    void Log(Pass pass, const Make& make) const {
        if (host.pu_add_to_tabbed_log) Log(pass, std::string_view(make()));
    }
    // The same where nothing of the caller's comes after it.
    void LogLast(std::string_view text) const {
        Lifetime::Last([&](Pass pass) { Log(pass, text); });
    }
    bool HasRight(Pass pass, std::string_view right) const {
        return AskRight(pass, lookup, strings, right).value_or(false);
    }
    std::vector<std::string> MappedAccounts(Pass pass) const;

    CString String(std::string_view text = {}) const { return CString(text, strings); }

    // Over once it has ended.
    const Lifetime life{[this] { return !m_ended; }};
    // What this session is part of; to be held by whoever may be interrupted by a message loop.
    std::weak_ptr<void> owner;

    HostLookup lookup;
    HostCallbacks host;
    Identity identity;
    StringManager& strings;
    OrderRecord& record;                     // of what is sent, on the disk
    const LiveRegistrations* book = nullptr; // as far as the book knows them; null without one

    std::string
        userDirectory; // the host's for this user, without a separator behind it; empty until it is asked
    void* m_primeCb = nullptr;
    void* m_scratch = nullptr;
    std::int32_t m_nLoginMode = 0;
    std::int32_t m_nSipOperationMode = 0; // 1 once the server has supplied the periods below
    // One of the four below.
    double& MinimumPeriods(const Frequency& frequency) { return this->*kMinimums[IndexOf(frequency)]; }
    double MinimumPeriods(const Frequency& frequency) const { return this->*kMinimums[IndexOf(frequency)]; }
    double m_dMinSipDaily = 0.0; // least number of instalments, a frequency each
    double m_dMinSipWeekly = 0.0;
    double m_dMinSipMonthly = 0.0;
    double m_dMinSipYearly = 0.0;
    const NonTradingDates* m_pNonTradingDates = nullptr; // the host's; it may replace the contents
    std::vector<RestrictedRange> restricted;             // one a year, as far as the server has told
    // As they are known now. A host that fetches its dates again after a restriction has that among them.
    planfold::ClosedDays ClosedDays() const {
        const bool hostKnows = host.pu_resend_nontradingDate_Request != nullptr;
        return planfold::ClosedDays(m_pNonTradingDates,
                                    hostKnows ? std::span<const RestrictedRange>() : restricted);
    }

private:
    static double Session::*const kMinimums[kFrequencyCount];

    std::uint64_t m_generation = 0;
    bool m_ended = false;
};

} // namespace planfold

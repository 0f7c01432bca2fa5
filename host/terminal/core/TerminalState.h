// Everything that the terminal knows, without a window: what the host's exports answer from.
#pragma once

#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/market/TerminalConfig.h"
#include "host/market/TradingCalendar.h"
#include "host/terminal/core/CautionRule.h"
#include "host/terminal/core/Keys.h"
#include "host/terminal/core/Logs.h"
#include "host/terminal/core/Settings.h"
#include "sdk/HostRecords.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct TerminalState {
    // Without its own configuration the terminal does not start: the fault says why. What else is missing
    // it does without; those faults are added to `faults`.
    std::optional<FileFault> Load(const std::string& data, const std::string& user);

    // The records as the boundary hands them out.
    bool FillDetails(std::string_view exchange, std::string_view tradingSymbol, ScripDetails& details) const;
    const ClientResult* SearchClients(int mode, std::string_view text, int& count);
    const NonTradingDates& NonTrading() const { return m_nonTrading; }
    // The calendar becomes the file's days and these. On a fault the old one stays.
    std::optional<FileFault> ReloadCalendar(std::span<const std::uint32_t> restricted = {});
    bool HasRight(std::string_view right) const;

    std::string dataFolder, userFolder;
    TerminalConfig config;
    ScripMaster master;
    ClientList clients;
    TradingCalendar calendar;
    UserSettings settings;
    TabbedLog log;
    HotKeyTable hotKeys;
    BasketCaution basketCaution;
    std::string activeClient;
    std::vector<FileFault> faults;

private:
    std::vector<ClientResult> m_results; // until the next search
    NonTradingDates m_nonTrading{};      // one address for the terminal's life
};

} // namespace vesk

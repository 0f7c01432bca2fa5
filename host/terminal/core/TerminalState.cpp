#include "host/terminal/core/TerminalState.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace vesk {
namespace {

// The field is zero-terminated; a text that is too long is cut.
void CopyText(std::span<char> target, std::string_view text) {
    const std::size_t length = std::min(text.size(), target.size() - 1);
    std::memcpy(target.data(), text.data(), length);
    target[length] = '\0';
}

template <class T>
void Take(Loaded<T> loaded, T& target, std::vector<FileFault>& faults) {
    if (loaded)
        target = std::move(loaded.Value());
    else
        faults.push_back(loaded.Fault());
}

} // namespace

std::optional<FileFault> TerminalState::Load(const std::string& data, const std::string& user) {
    dataFolder = data;
    userFolder = user;
    Loaded<TerminalConfig> loaded = TerminalConfig::Load(data + "/terminal.json");
    if (!loaded) return loaded.Fault();
    config = std::move(loaded.Value());
    Take(ScripMaster::Load(data + "/scrips.csv"), master, faults);
    Take(ClientList::Load(data + "/clients.csv"), clients, faults);
    if (auto fault = settings.Open(user + "/settings.json")) faults.push_back(std::move(*fault));
    if (auto fault = ReloadCalendar()) faults.push_back(std::move(*fault));
    return std::nullopt;
}

std::optional<FileFault> TerminalState::ReloadCalendar(std::span<const std::uint32_t> restricted) {
    Loaded<TradingCalendar> loaded = TradingCalendar::Load(dataFolder + "/nontrading.csv");
    if (!loaded) return loaded.Fault();
    calendar = std::move(loaded.Value());
    calendar.Add(restricted);
    const std::span<const std::uint32_t> dates = calendar.Dates();
    m_nonTrading = {static_cast<std::uint32_t>(dates.size()), 0, dates.empty() ? nullptr : dates.data()};
    return std::nullopt;
}

bool TerminalState::FillDetails(std::string_view exchange, std::string_view tradingSymbol,
                                ScripDetails& details) const {
    const Scrip* scrip = master.ByTradingSymbol(exchange, tradingSymbol);
    if (!scrip) return false;
    details = {};
    details.decimals = scrip->decimals;
    details.priceMultiplier = scrip->multiplier;
    details.tickSize = scrip->tickSize;
    CopyText(details.token, scrip->token);
    CopyText(details.tradingSymbol, scrip->tradingSymbol);
    return true;
}

const ClientResult* TerminalState::SearchClients(int mode, std::string_view text, int& count) {
    m_results.clear();
    for (const Client* client : clients.Search(mode, text))
        m_results.push_back({client->id.c_str(), client->name.c_str()});
    count = static_cast<int>(m_results.size());
    return m_results.empty() ? nullptr : m_results.data();
}

bool TerminalState::HasRight(std::string_view right) const {
    const auto found = config.rights.find(right);
    return found != config.rights.end() && found->second;
}

} // namespace vesk

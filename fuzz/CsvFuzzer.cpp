// The terminal's data files of any content: a fault with its line, or rows that every look-up finds.

#include "fuzz/Fuzz.h"
#include "host/market/ClientList.h"
#include "host/market/ScripMaster.h"
#include "host/market/TradingCalendar.h"

#include <algorithm>

using fuzz::Demand;

namespace {

void CheckFault(const vesk::FileFault& fault, std::string_view text) {
    Demand(fault.file == "data.csv" && !fault.what.empty());
    Demand(fault.line <= static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
}

void CheckMaster(const vesk::ScripMaster& master) {
    for (const vesk::Scrip& scrip : master.Scrips()) {
        Demand(master.ByTradingSymbol(scrip.exchange, scrip.tradingSymbol) == &scrip);
        Demand(master.BySymbol(scrip.exchange, scrip.series, scrip.symbol) == &scrip);
        if (scrip.series.find('|') == std::string::npos)
            Demand(master.ByKey(scrip.exchange + '|' + scrip.series + '|' + scrip.symbol) == &scrip);
        Demand(std::ranges::count(master.SeriesOf(scrip.exchange), scrip.series) == 1);
        const auto symbols = master.SymbolsOf(scrip.exchange, scrip.series);
        Demand(std::ranges::is_sorted(symbols) && std::ranges::count(symbols, scrip.symbol) == 1);
    }
}

void CheckClients(const vesk::ClientList& clients) {
    for (const vesk::Client& client : clients.Clients()) {
        Demand(clients.Find(client.id) == &client);
        // Blanks at the ends of a searched text do not count, and "(" behind it asks for an account.
        const bool searchable = client.id.find_first_of(" (") == std::string::npos;
        for (const auto& text : {std::string(), searchable ? client.id : std::string()}) {
            const auto found = clients.Search(static_cast<int>(vesk::ClientSearchMode::all), text);
            Demand(std::ranges::find(found, &client) != found.end());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::Text(data, size);
    if (const auto master = vesk::ScripMaster::Parse(text, "folder/data.csv"))
        CheckMaster(master.Value());
    else
        CheckFault(master.Fault(), text);
    if (const auto clients = vesk::ClientList::Parse(text, "folder/data.csv"))
        CheckClients(clients.Value());
    else
        CheckFault(clients.Fault(), text);
    if (const auto calendar = vesk::TradingCalendar::Parse(text, "folder/data.csv"))
        Demand(std::ranges::adjacent_find(calendar.Value().Dates(), std::greater_equal())
               == calendar.Value().Dates().end());
    else
        CheckFault(calendar.Fault(), text);
    return 0;
}

// Exports that answer from the scrip master.
#include "host/terminal/window/exports/HostExports.h"

#include <algorithm>
#include <array>

namespace vesk {
namespace {

void Fill(const framework::ComboBox& combo, const std::vector<std::string_view>& texts) {
    if (!combo) return;
    constexpr int bytesPerItem = 24;
    combo.Send(WM_SETREDRAW, FALSE);
    combo.Clear();
    combo.Send(CB_INITSTORAGE, texts.size(), static_cast<LPARAM>(texts.size() * bytesPerItem));
    for (const std::string_view text : texts)
        combo.Add(std::string(text));
    combo.Send(WM_SETREDRAW, TRUE);
    InvalidateRect(combo.Handle(), nullptr, TRUE);
}

} // namespace
} // namespace vesk

using namespace vesk;

// The combos for instrument, expiry and strike stay as they are: equities have none.
int pu_fill_scrip_combos(HostWindow dialog, int exchangeId, int seriesId, int symbolId, int, int, int,
                         int flag) {
    return Serve(0, [&](Application& application) {
        const ScripMaster& master = application.State().master;
        const std::string exchange = Item(dialog, exchangeId).Text();
        const auto series = Item<framework::ComboBox>(dialog, seriesId);
        const std::vector<std::string_view> known = master.SeriesOf(exchange);
        std::string chosen = series.Text();
        if (flag == 0) {
            Fill(series, known);
            // A dialog selects it by itself, so that the symbols belong to it.
            const bool hasEquities = std::ranges::find(known, "EQ") != known.end();
            chosen = hasEquities ? "EQ" : known.empty() ? std::string_view() : known.front();
        }
        Fill(Item<framework::ComboBox>(dialog, symbolId), master.SymbolsOf(exchange, chosen));
        return 1;
    });
}

int pu_get_trading_symbol_n_token(HostWindow dialog, int exchangeId, int seriesId, int symbolId, int, int, int,
                                  OutString symbol, OutString exchangeAndToken) {
    return Serve(0, [&](Application& application) {
        const Scrip* scrip = application.State().master.BySymbol(
            Item(dialog, exchangeId).Text(), Item(dialog, seriesId).Text(), Item(dialog, symbolId).Text());
        if (!scrip) return 0;
        Put(symbol, scrip->tradingSymbol);
        Put(exchangeAndToken, scrip->exchange + '|' + scrip->token);
        return 1;
    });
}

int pu_get_intersted_scrip_field(InString key, int, int, OutString exchange, OutString series, OutString symbol,
                                 OutString token, OutString tradingSymbol, OutString company) {
    return Serve(0, [&](Application& application) {
        const Scrip* scrip = application.State().master.ByKey(Text(key));
        if (!scrip) return 0;
        Put(exchange, scrip->exchange);
        Put(series, scrip->series);
        Put(symbol, scrip->symbol);
        Put(token, scrip->token);
        Put(tradingSymbol, scrip->tradingSymbol);
        Put(company, scrip->company);
        return 1;
    });
}

ScripDetails* pu_get_scrip_details_from_TradSymbol(InString exchange, InString tradingSymbol,
                                                   ScripDetails* out) {
    return Serve(static_cast<ScripDetails*>(nullptr), [&](Application& application) -> ScripDetails* {
        return out && application.State().FillDetails(Text(exchange), Text(tradingSymbol), *out) ? out
                                                                                                 : nullptr;
    });
}

int pu_send_mrv_master_request(InString exchange, int) {
    return Serve(0, [&](Application&) { return ExchangeCode(Text(exchange)).empty() ? 0 : 1; });
}

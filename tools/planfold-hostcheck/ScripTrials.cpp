#include "tools/planfold-hostcheck/Bench.h"

#include <array>

namespace hostcheck {
namespace {

Verdict TryScripCombos(sdk::fn::pu_fill_scrip_combos* call, Bench& bench) {
    Workplace& workplace = bench.workplace;
    const auto fill = [&](int flag) {
        call(workplace.Form(), id::exchange, id::series, id::symbol, id::expiry, id::strike, id::option, flag);
        return workplace.Items(id::symbol);
    };
    workplace.Choose(id::exchange, "NSE");
    fill(0);
    const auto series = workplace.Items(id::series);
    if (series.empty() || series.front() != "EQ") return Wrong("gives no series \"EQ\" first for \"NSE\"");
    for (const int combo : {id::expiry, id::strike, id::option})
        if (!workplace.Items(combo).empty())
            return Wrong("fills combo " + std::to_string(combo) + " for equities");
    workplace.Choose(id::series, "EQ");
    const auto symbols = fill(1);
    if (workplace.Items(id::series) != series)
        return Wrong("fills the series anew where only symbols are asked for");
    if (symbols.empty()) return Wrong("gives no symbol of the series \"EQ\"");
    bench.scrip.symbol = symbols.front();
    workplace.Choose(id::symbol, symbols.front());
    return {};
}

Verdict TryTradingSymbol(sdk::fn::pu_get_trading_symbol_n_token* call, Bench& bench) {
    if (bench.scrip.symbol.empty()) return Untried("needs a symbol of pu_fill_scrip_combos");
    CString symbol = bench.Text(), place = bench.Text();
    if (!call(bench.workplace.Form(), id::exchange, id::series, id::symbol, id::expiry, id::strike, id::option,
              &symbol, &place))
        return Wrong("does not find " + Quoted(bench.scrip.symbol) + ", which the form shows");
    const std::size_t bar = place.View().find('|');
    if (symbol.IsEmpty() || bar == 0 || bar == std::string_view::npos || bar + 1 == place.View().size())
        return Wrong("tells " + Quoted(symbol.View()) + " and " + Quoted(place.View())
                     + ", not like \"nse_cm|1045\"");
    bench.scrip.tradingSymbol = symbol.View();
    bench.scrip.exchange = place.View().substr(0, bar);
    bench.scrip.token = place.View().substr(bar + 1);
    return Whole({&symbol, &place}, bench.strings);
}

Verdict TryDetails(sdk::fn::pu_get_scrip_details_from_TradSymbol* call, Bench& bench) {
    const Scrip& scrip = bench.scrip;
    ScripDetails details{};
    const CString code = bench.Text(scrip.exchange), shown = bench.Text("NSE"), unknown = bench.Text(kNobody),
                  symbol = bench.Text(scrip.tradingSymbol);
    if (call(&shown, &unknown, &details)) return Wrong("finds " + Quoted(kNobody));
    if (scrip.tradingSymbol.empty()) return Untried("needs a scrip of pu_get_trading_symbol_n_token");
    for (const CString* exchange : {&code, &shown}) {
        details = {};
        const ScripDetails* found = call(exchange, &symbol, &details);
        if (!found) return Wrong("does not find " + Quoted(symbol.View()) + " of " + Quoted(exchange->View()));
        if (!(found->priceMultiplier > 0)) return Wrong("tells a price multiplier that is not above 0");
        Verdict verdict = First({Same("token", TextOf(found->token), scrip.token),
                                 Same("trading symbol", TextOf(found->tradingSymbol), scrip.tradingSymbol)});
        if (!verdict.IsGood()) return verdict;
    }
    return {};
}

Verdict TryScripFields(sdk::fn::pu_get_intersted_scrip_field* call, Bench& bench) {
    const Scrip& scrip = bench.scrip;
    std::array<CString, 6> told{bench.Text(), bench.Text(), bench.Text(),
                                bench.Text(), bench.Text(), bench.Text()};
    const auto ask = [&](const CString& key) {
        return call(&key, 0, 6, &told[0], &told[1], &told[2], &told[3], &told[4], &told[5]);
    };
    if (ask(bench.Text("nse_cm|EQ|" + std::string(kNobody)))) return Wrong("finds " + Quoted(kNobody));
    if (scrip.exchange.empty()) return Untried("needs a scrip of pu_get_trading_symbol_n_token");
    const std::string key = scrip.exchange + "|EQ|" + scrip.symbol;
    if (!ask(bench.Text(key))) return Wrong("does not find " + Quoted(key));
    return First({Same("exchange code", told[0].View(), scrip.exchange), Same("series", told[1].View(), "EQ"),
                  Same("symbol", told[2].View(), scrip.symbol), Same("token", told[3].View(), scrip.token),
                  Same("trading symbol", told[4].View(), scrip.tradingSymbol),
                  Whole({&told[0], &told[1], &told[2], &told[3], &told[4], &told[5]}, bench.strings)});
}

Verdict TryProducts(sdk::fn::pu_load_product_type_combo* call, Bench& bench) {
    call(bench.workplace.Form(), id::product);
    return FilledWithTexts(bench, id::product);
}

Verdict CallClearFocus(sdk::fn::pu_clear_FocusFromDropDown* call, Bench& bench) {
    call(bench.workplace.Control(id::symbol), bench.workplace.Form());
    return {};
}
Verdict CallResize(sdk::fn::pu_resize_EditCtrlForFontChange* call, Bench& bench) {
    call(bench.workplace.Control(id::amount));
    return {};
}

} // namespace

std::span<const Trial> ScripTrials() {
    using namespace sdk::fn;
    static constexpr Trial trials[] = {
        {"pu_fill_scrip_combos", Try<pu_fill_scrip_combos, TryScripCombos>},
        {"pu_get_trading_symbol_n_token", Try<pu_get_trading_symbol_n_token, TryTradingSymbol>},
        {"pu_get_scrip_details_from_TradSymbol", Try<pu_get_scrip_details_from_TradSymbol, TryDetails>},
        {"pu_get_intersted_scrip_field", Try<pu_get_intersted_scrip_field, TryScripFields>},
        {"pu_load_product_type_combo", Try<pu_load_product_type_combo, TryProducts>},
        {"pu_clear_FocusFromDropDown", Try<pu_clear_FocusFromDropDown, CallClearFocus>},
        {"pu_resize_EditCtrlForFontChange", Try<pu_resize_EditCtrlForFontChange, CallResize>},
    };
    return trials;
}

} // namespace hostcheck

// The functions that the plug-in finds in the test program, by name.
#include "tests/support/FakeHost.h"
#include "tests/support/WindowProbe.h"

#include <cstdio>
#include <type_traits>

#define HOST_EXPORT extern "C" __declspec(dllexport)

namespace {

FakeHost& Host() {
    return FakeHost::Current();
}

std::string Shown(InString text) {
    return std::string(text->View());
}
std::string Shown(int number) {
    return std::to_string(number);
}
std::string Shown(HWND window) {
    return window ? "#" + std::to_string(GetDlgCtrlID(window)) : "no window";
}

template <class... Arguments>
void Record(const char* name, const Arguments&... arguments) {
    std::string call;
    ((call += (call.empty() ? "" : ",") + Shown(arguments)), ...);
    Host().calls.push_back(std::string(name) + "(" + call + ")");
}

void FillCombo(HWND dialog, int combo, const std::vector<std::string>& items) {
    HWND window = GetDlgItem(dialog, combo);
    SendMessageA(window, CB_RESETCONTENT, 0, 0);
    for (const std::string& item : items)
        SendMessageA(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
}

// The entry that the combo shows, read by its selection: a combo that is being changed still has its old text.
std::string Selected(HWND dialog, int combo) {
    const auto index = SendMessageA(GetDlgItem(dialog, combo), CB_GETCURSEL, 0, 0);
    const auto items = probe::Items(dialog, combo);
    return index < 0 ? "" : items[static_cast<std::size_t>(index)];
}

std::string CodeOf(std::string_view exchange) {
    return exchange == "NSE" ? "nse_cm" : exchange == "BSE" ? "bse_cm" : std::string(exchange);
}

int Give(OutString out, const std::string& text) {
    if (text.empty()) return 0;
    *out = text;
    return 1;
}

} // namespace

HOST_EXPORT int pu_fill_scrip_combos(HWND dialog, int exchange, int series, int symbol, int a, int b, int c,
                                     int flag) {
    Record("pu_fill_scrip_combos", exchange, series, symbol, a, b, c, flag);
    const std::string code = CodeOf(Selected(dialog, exchange));
    std::vector<std::string> seriesList, symbols;
    for (const FakeHost::Scrip& scrip : Host().scrips)
        if (scrip.exchange == code
            && std::find(seriesList.begin(), seriesList.end(), scrip.series) == seriesList.end())
            seriesList.push_back(scrip.series);
    const std::string chosen = flag == 0 ? "EQ" : Selected(dialog, series);
    for (const FakeHost::Scrip& scrip : Host().scrips)
        if (scrip.exchange == code && scrip.series == chosen) symbols.push_back(scrip.symbol);
    if (flag == 0) FillCombo(dialog, series, seriesList);
    FillCombo(dialog, symbol, symbols);
    return 1;
}

HOST_EXPORT int pu_get_trading_symbol_n_token(HWND dialog, int exchange, int series, int symbol, int a, int b,
                                              int c, OutString tradingSymbol, OutString exchangeAndToken) {
    Record("pu_get_trading_symbol_n_token", exchange, series, symbol, a, b, c);
    const std::string code = CodeOf(Selected(dialog, exchange)), name = Selected(dialog, symbol);
    const auto* scrip = Host().FindScrip(
        [&](const auto& candidate) { return candidate.exchange == code && candidate.symbol == name; });
    if (!scrip) return 0;
    *tradingSymbol = scrip->tradingSymbol;
    *exchangeAndToken = scrip->exchange + "|" + scrip->token;
    return 1;
}

HOST_EXPORT int pu_get_intersted_scrip_field(InString key, int zero, int six, OutString exchange,
                                             OutString series, OutString symbol, OutString token,
                                             OutString tradingSymbol, OutString company) {
    Record("pu_get_intersted_scrip_field", key, zero, six);
    const auto* scrip = Host().FindScrip([&](const auto& candidate) {
        return candidate.exchange + "|" + candidate.series + "|" + candidate.symbol == key->View();
    });
    if (!scrip) return 0;
    *exchange = scrip->exchange;
    *series = scrip->series;
    *symbol = scrip->symbol;
    *token = scrip->token;
    *tradingSymbol = scrip->tradingSymbol;
    *company = scrip->company;
    return 1;
}

HOST_EXPORT ScripDetails* pu_get_scrip_details_from_TradSymbol(InString exchange, InString tradingSymbol,
                                                               ScripDetails* out) {
    Record("pu_get_scrip_details_from_TradSymbol", exchange, tradingSymbol);
    const std::string code = CodeOf(exchange->View());
    const auto* scrip = Host().FindScrip([&](const auto& candidate) {
        return candidate.exchange == code && candidate.tradingSymbol == tradingSymbol->View();
    });
    if (!scrip) return nullptr;
    *out = {2, 0, 100.0, 5, {}, {}};
    std::snprintf(out->token, sizeof out->token, "%s", scrip->token.c_str());
    std::snprintf(out->tradingSymbol, sizeof out->tradingSymbol, "%s", scrip->tradingSymbol.c_str());
    return out;
}

HOST_EXPORT int register_hotkey(HWND window, InString group, int command, InString text, InString description,
                                InString key) {
    Record("register_hotkey", window, group, command, text, description, key);
    return 1;
}

HOST_EXPORT int pu_InvokeDialog(int dialog, HWND caller) {
    Record("pu_InvokeDialog", dialog, caller);
    return 1;
}

HOST_EXPORT RxControl* GetKeloRxControl(int kind, CKeloRxNotifierBase* notifier) {
    Record("GetKeloRxControl", kind);
    if (!Host().givesControls) return nullptr;
    return &Host().controls.emplace_back(Host(), static_cast<int>(Host().controls.size()), kind, notifier);
}

HOST_EXPORT void DestoryKeloRxCOntrol(RxControl* control) {
    Record("DestoryKeloRxCOntrol");
    auto* fake = static_cast<FakeControl*>(control);
    if (!fake || !fake->live) Host().misuses.emplace_back("a control given back that is not there");
    if (fake) fake->live = false;
}

HOST_EXPORT int pu_get_client_search_time() {
    Record("pu_get_client_search_time");
    return Host().searchTime;
}

HOST_EXPORT int pu_add_to_tabbed_log(ByValueString text) {
    const TakenString taken(text);
    Host().log.emplace_back(taken.View());
    return 1;
}

HOST_EXPORT int pu_load_client_id_combo(HWND dialog, int combo) {
    Record("pu_load_client_id_combo", combo);
    std::vector<std::string> identifiers;
    for (const auto& client : Host().clients)
        identifiers.push_back(client.first);
    FillCombo(dialog, combo, identifiers);
    return 1;
}

HOST_EXPORT int pu_load_product_type_combo(HWND dialog, int combo) {
    Record("pu_load_product_type_combo", combo);
    FillCombo(dialog, combo, Host().products);
    return 1;
}

HOST_EXPORT int pu_get_peer_data(OutString peerIdA, OutString peerIdB, OutString other) {
    Record("pu_get_peer_data");
    *peerIdA = Host().peerIdA;
    *peerIdB = Host().peerIdB;
    *other = "other";
    return 1;
}

HOST_EXPORT int pu_get_uuid(OutString identifier) {
    return Give(identifier, Host().uuid);
}

HOST_EXPORT int pu_get_ActiveClient(OutString client) {
    return Give(client, Host().activeClient);
}

HOST_EXPORT int pu_get_FontVariation(std::intptr_t* variation, std::intptr_t* size, void* third, void* fourth) {
    Record("pu_get_FontVariation", static_cast<int>(reinterpret_cast<std::intptr_t>(third)),
           static_cast<int>(reinterpret_cast<std::intptr_t>(fourth)));
    *variation = Host().fontVariation;
    *size = Host().fontSize;
    return 1;
}

HOST_EXPORT int pu_clear_FocusFromDropDown(HWND combo, HWND) {
    Record("pu_clear_FocusFromDropDown", combo);
    return 1;
}

HOST_EXPORT int pu_resize_EditCtrlForFontChange(HWND edit) {
    Record("pu_resize_EditCtrlForFontChange", edit);
    return 1;
}

HOST_EXPORT int pu_is_valid_account(InString account) {
    Record("pu_is_valid_account", account);
    for (const auto& client : Host().clients)
        if (client.first == account->View()) return 1;
    return 0;
}

HOST_EXPORT const ClientResult* pu_get_entered_text_results(int mode, int* count, InString text, int one) {
    Record("pu_get_entered_text_results", mode, text, one);
    return Host().Search(mode, text->View(), *count);
}

HOST_EXPORT int pu_read_settings_from_json(InString section, InString key, OutString value, int one) {
    Record("pu_read_settings_from_json", section, key, one);
    const auto found = Host().settings.find({Shown(section), Shown(key)});
    return found == Host().settings.end() ? 0 : Give(value, found->second);
}

HOST_EXPORT int pu_write_settings_to_json(InString section, InString key, InString value, int one) {
    Record("pu_write_settings_to_json", section, key, value, one);
    Host().settings[{Shown(section), Shown(key)}] = Shown(value);
    return 1;
}

HOST_EXPORT int pu_get_client_name(OutString name, InString client) {
    for (const auto& known : Host().clients)
        if (known.first == client->View()) return Give(name, known.second);
    return 0;
}

HOST_EXPORT int pu_get_client_overview_status(int zero) {
    Record("pu_get_client_overview_status", zero);
    return Host().clientOverview;
}

HOST_EXPORT int pu_get_all_mappedAccount_ids(CStringArray* accounts) {
    for (const std::string& account : Host().mappedAccounts)
        accounts->Append(account, Host().strings);
    return 1;
}

HOST_EXPORT const NonTradingDates* pu_get_non_trading_dates_map() {
    Record("pu_get_non_trading_dates_map");
    return Host().NonTrading();
}

HOST_EXPORT int pu_resend_nontradingDate_Request() {
    Record("pu_resend_nontradingDate_Request");
    return 1;
}

HOST_EXPORT int pu_get_UserDirectory(OutString directory) {
    Record("pu_get_UserDirectory");
    return Give(directory, Host().userDirectory);
}

HOST_EXPORT int pu_invoke_caution_order_confirmation(InString client, InString investType, InString product,
                                                     InString value, InString symbol, InString exchange) {
    Record("pu_invoke_caution_order_confirmation", client, investType, product, value, symbol, exchange);
    if (const auto action = std::exchange(Host().duringCaution, nullptr)) action();
    return Host().caution;
}

HOST_EXPORT int pu_build_bskt_caution_order_map(InString client, InString investType, InString product,
                                                InString value, InString symbol, InString exchange, int row) {
    Record("pu_build_bskt_caution_order_map", client, investType, product, value, symbol, exchange, row);
    return 1;
}

HOST_EXPORT int pu_invoke_bskt_caution_order_confirmation() {
    Record("pu_invoke_bskt_caution_order_confirmation");
    if (const auto action = std::exchange(Host().duringCaution, nullptr)) action();
    return Host().caution;
}

HOST_EXPORT int pu_get_cautionary_bskt_confirm_state(InString symbol, InString exchange, int row) {
    Record("pu_get_cautionary_bskt_confirm_state", symbol, exchange, row);
    return Host().caution;
}

HOST_EXPORT int pu_free_allocated_memory() {
    Record("pu_free_allocated_memory");
    return 1;
}

HOST_EXPORT int pu_send_mrv_master_request(InString exchange, int value) {
    Record("pu_send_mrv_master_request", exchange, value);
    return 1;
}

HOST_EXPORT int pu_is_actionright_enabled(InString right) {
    return Host().rights.contains(Shown(right));
}

HOST_EXPORT VeskApp* pu_get_exe_app() {
    return Host().App();
}

// Every export of the list is here, with the type of the list.
#define SAME_TYPE(name, ...) static_assert(std::is_same_v<decltype(::name), sdk::fn::name>);
VESK_HOST_EXPORTS(SAME_TYPE)
VESK_HOST_EXPORTS_BESIDE_THE_TABLE(SAME_TYPE)
#undef SAME_TYPE

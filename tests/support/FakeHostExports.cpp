// The functions that the test host exports.
#include "tests/support/FakeHost.h"

#ifdef _WIN32
#include "tests/support/WindowProbe.h"
#define HOST_EXPORT(name, ...) extern "C" __declspec(dllexport) sdk::fn::name name;
#else
#define HOST_EXPORT(name, ...) extern "C" sdk::fn::name name;
#endif

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <utility>

VESK_HOST_EXPORTS(HOST_EXPORT)
VESK_HOST_EXPORTS_BESIDE_THE_TABLE(HOST_EXPORT)

namespace planfold::test {
namespace {

#ifdef _WIN32
// The entry that the combo shows, read by its selection: a combo that is being changed still has its old text.
std::string Selected(HWND dialog, int combo) {
    const auto index = SendMessageA(GetDlgItem(dialog, combo), CB_GETCURSEL, 0, 0);
    return index < 0 ? "" : probe::Items(dialog, combo)[static_cast<std::size_t>(index)];
}
void FillCombo(HWND dialog, int combo, const Texts& items) {
    HWND window = GetDlgItem(dialog, combo);
    SendMessageA(window, CB_RESETCONTENT, 0, 0);
    for (const std::string& item : items)
        SendMessageA(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
}
std::string Shown(HWND window) {
    return "#" + std::to_string(GetDlgCtrlID(window));
}
#else
std::string Selected(HostWindow, int combo) {
    constexpr int exchange = 1003, series = 1005;
    return combo == exchange ? "NSE" : combo == series ? "EQ" : Host().scrips.front().symbol;
}
void FillCombo(HostWindow, int, const Texts&) {}
std::string Shown(HostWindow) {
    return "#";
}
#endif
std::string Shown(InString text) {
    return std::string(text->View());
}
std::string Shown(int number) {
    return std::to_string(number);
}

template <class... Arguments>
int Record(const char* name, const Arguments&... arguments) {
    if (Host().ended) std::_Exit(kCalledAfterItsEnd);
    std::string call;
    ((call += (call.empty() ? "" : ",") + Shown(arguments)), ...);
    Host().calls.push_back(std::string(name) + "(" + call + ")");
    return 1;
}

std::string CodeOf(std::string_view exchange) {
    return exchange == "NSE" ? "nse_cm" : exchange == "BSE" ? "bse_cm" : std::string(exchange);
}

const FakeHost::Scrip* FindScrip(std::string_view exchange, std::string FakeHost::Scrip::*by,
                                 std::string_view value) {
    const auto found = std::ranges::find_if(Host().scrips, [&](const FakeHost::Scrip& scrip) {
        return scrip.exchange == CodeOf(exchange) && scrip.*by == value;
    });
    return found == Host().scrips.end() ? nullptr : &*found;
}

int Give(OutString out, const std::string& text) {
    if (text.empty()) return 0;
    *out = text;
    return 1;
}

int AskCaution() {
    if (const auto action = std::exchange(Host().duringCaution, nullptr)) action();
    return Host().caution;
}

// Mode 2 looks at the identifier only, 3 at the name only; the text is in upper case, blanks match everything,
// "X(" matches X alone and whatever begins with it. Every search lets the texts of the one before go, as a host
// may.
const ClientResult* Search(int mode, std::string_view text, int& count) {
    static std::deque<std::pair<std::string, std::string>> texts;
    static std::vector<ClientResult> results;
    const bool exact = text.ends_with('(');
    const std::string_view wanted = text.substr(0, text.size() - exact);
    const auto holds = [&](std::string value) {
        for (char& c : value)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (exact) return value == wanted || value.starts_with(text);
        return wanted.find_first_not_of(' ') == wanted.npos || value.find(wanted) != value.npos;
    };
    texts.clear();
    results.clear();
    for (const auto& client : Host().clients)
        if ((mode != 3 && holds(client.first)) || (mode != 2 && holds(client.second))) {
            const auto& [id, name] = texts.emplace_back(client);
            results.push_back({id.c_str(), name.c_str()});
        }
    count = static_cast<int>(results.size());
    return results.data();
}

} // namespace

HostLookup FakeHost::Lookup() {
#define ROW(name, ...) {#name, reinterpret_cast<AnyFunction>(static_cast<sdk::fn::name*>(&::name))},
    static const std::map<std::string, AnyFunction> exports{VESK_HOST_EXPORTS(ROW)
                                                                VESK_HOST_EXPORTS_BESIDE_THE_TABLE(ROW)};
#undef ROW
    return [this](const char* name) -> AnyFunction {
        lookedUp.emplace_back(name);
        return missing.contains(name) || !exports.contains(name) ? nullptr : exports.at(name);
    };
}

} // namespace planfold::test

using namespace planfold::test;

int pu_fill_scrip_combos(HostWindow dialog, int exchange, int series, int symbol, int a, int b, int c,
                         int flag) {
    Record("pu_fill_scrip_combos", exchange, series, symbol, a, b, c, flag);
    const std::string code = CodeOf(Selected(dialog, exchange));
    const std::string chosen = flag == 0 ? "EQ" : Selected(dialog, series);
    Texts seriesList, symbols;
    for (const FakeHost::Scrip& scrip : Host().scrips) {
        if (scrip.exchange != code) continue;
        if (std::ranges::find(seriesList, scrip.series) == seriesList.end()) seriesList.push_back(scrip.series);
        if (scrip.series == chosen) symbols.push_back(scrip.symbol);
    }
    if (flag == 0) FillCombo(dialog, series, seriesList);
    FillCombo(dialog, symbol, symbols);
    if (const auto action = std::exchange(Host().duringScripFill, nullptr)) action();
    return 1;
}
int pu_get_trading_symbol_n_token(HostWindow dialog, int exchange, int series, int symbol, int a, int b, int c,
                                  OutString tradingSymbol, OutString exchangeAndToken) {
    Record("pu_get_trading_symbol_n_token", exchange, series, symbol, a, b, c);
    const auto* scrip =
        FindScrip(Selected(dialog, exchange), &FakeHost::Scrip::symbol, Selected(dialog, symbol));
    if (!scrip) return 0;
    const std::string& other = Host().exchangeAndToken;
    *tradingSymbol = scrip->tradingSymbol;
    *exchangeAndToken = other.empty() ? scrip->exchange + "|" + scrip->token : other;
    if (const auto action = std::exchange(Host().duringScripLookUp, nullptr)) action();
    return 1;
}
int pu_get_intersted_scrip_field(InString key, int zero, int six, OutString exchange, OutString series,
                                 OutString symbol, OutString token, OutString tradingSymbol,
                                 OutString company) {
    Record("pu_get_intersted_scrip_field", key, zero, six);
    for (const FakeHost::Scrip& scrip : Host().scrips) {
        if (scrip.exchange + "|" + scrip.series + "|" + scrip.symbol != key->View()) continue;
        *exchange = scrip.exchange;
        *series = scrip.series;
        *symbol = scrip.symbol;
        *token = scrip.token;
        *tradingSymbol = scrip.tradingSymbol;
        *company = scrip.company;
        return 1;
    }
    return 0;
}
ScripDetails* pu_get_scrip_details_from_TradSymbol(InString exchange, InString tradingSymbol,
                                                   ScripDetails* out) {
    Record("pu_get_scrip_details_from_TradSymbol", exchange, tradingSymbol);
    const auto* scrip = FindScrip(exchange->View(), &FakeHost::Scrip::tradingSymbol, tradingSymbol->View());
    if (!scrip) return nullptr;
    *out = {2, 0, 100.0, 5, {}, {}};
    std::snprintf(out->token, sizeof out->token, "%s", scrip->token.c_str());
    std::snprintf(out->tradingSymbol, sizeof out->tradingSymbol, "%s", scrip->tradingSymbol.c_str());
    return out;
}
RxControl* GetKeloRxControl(int kind, CKeloRxNotifierBase* notifier) {
    Record("GetKeloRxControl", kind);
    return &Host().controls.emplace_back(Host(), kind, notifier);
}
void DestoryKeloRxCOntrol(RxControl* control) {
    Record("DestoryKeloRxCOntrol");
    auto* fake = static_cast<FakeControl*>(control);
    if (!fake || !fake->live) Host().misuses.emplace_back("a control given back that is not there");
    if (!fake) return;
    const int stops = fake->kind == kRxRequests ? 0 : 1;
    if (fake->stops != stops) Host().misuses.emplace_back("a control not stopped as its kind wants");
    fake->live = false;
}
int pu_add_to_tabbed_log(ByValueString text) {
    Host().log.emplace_back(TakenString(text).View());
    if (const auto action = std::exchange(Host().duringLog, nullptr)) action();
    return 1;
}
int pu_load_client_id_combo(HostWindow dialog, int combo) {
    Texts identifiers;
    for (const auto& client : Host().clients)
        identifiers.push_back(client.first);
    FillCombo(dialog, combo, identifiers);
    return 1;
}
int pu_load_product_type_combo(HostWindow dialog, int combo) {
    FillCombo(dialog, combo, {"CNC", "MIS", "NRML"});
    return 1;
}
int pu_get_peer_data(OutString peerIdA, OutString peerIdB, OutString other) {
    *peerIdA = Host().peerIdA;
    *peerIdB = Host().peerIdB;
    *other = "other";
    return 1;
}
int pu_get_uuid(OutString identifier) {
    return Give(identifier, Host().uuid);
}
int pu_get_ActiveClient(OutString client) {
    return Give(client, Host().activeClient);
}
int pu_get_FontVariation(std::intptr_t* variation, std::intptr_t* size, void*, void*) {
    *variation = Host().fontVariation;
    *size = Host().fontSize;
    return 1;
}
int pu_is_valid_account(InString account) {
    return Host().validAccounts.contains(Shown(account));
}
const ClientResult* pu_get_entered_text_results(int mode, int* count, InString text, int) {
    Record("pu_get_entered_text_results", mode, text);
    if (const auto action = std::exchange(Host().duringSearch, nullptr)) action();
    return Search(mode, text->View(), *count);
}
int pu_read_settings_from_json(InString section, InString key, OutString value, int) {
    return Give(value, Host().settings[Shown(section) + "/" + Shown(key)]);
}
int pu_write_settings_to_json(InString section, InString key, InString value, int) {
    Host().settings[Shown(section) + "/" + Shown(key)] = Shown(value);
    return 1;
}
int pu_get_client_name(OutString name, InString client) {
    for (const auto& known : Host().clients)
        if (known.first == client->View()) return Give(name, known.second);
    return 0;
}
// The answer is the low byte only.
int pu_get_client_overview_status(int zero) {
    return zero ? 0 : 0x100 | Host().clientOverview;
}
int pu_get_all_mappedAccount_ids(CStringArray* accounts) {
    for (const std::string& account : Host().accounts)
        accounts->Append(account, Host().strings);
    if (const auto action = std::exchange(Host().duringAccounts, nullptr)) action();
    return 1;
}
const NonTradingDates* pu_get_non_trading_dates_map() {
    static const NonTradingDates none{};
    Record("pu_get_non_trading_dates_map");
    return &none;
}
int pu_get_UserDirectory(OutString directory) {
    Record("pu_get_UserDirectory");
    return Give(directory, Host().userDirectory);
}
int pu_invoke_caution_order_confirmation(InString client, InString investType, InString product, InString value,
                                         InString symbol, InString exchange) {
    Record("pu_invoke_caution_order_confirmation", client, investType, product, value, symbol, exchange);
    return AskCaution();
}
int pu_is_actionright_enabled(InString right) {
    return Host().rights.contains(Shown(right));
}
int pu_is_connected() {
    return Host().connected ? 1 : 0;
}
VeskApp* pu_get_exe_app() {
    return Host().hasApp ? &Host().app : nullptr;
}
int pu_resize_EditCtrlForFontChange(HostWindow edit) {
    Record("pu_resize_EditCtrlForFontChange", edit);
    if (const auto action = std::exchange(Host().duringResize, nullptr)) action();
    return 1;
}
int register_hotkey(HostWindow, InString group, int command, InString text, InString description,
                    InString key) {
    return Record("register_hotkey", group, command, text, description, key);
}
int pu_free_allocated_memory() {
    return Record("pu_free_allocated_memory");
}
int pu_build_bskt_caution_order_map(InString client, InString investType, InString product, InString value,
                                    InString symbol, InString exchange, int row) {
    return Record("pu_build_bskt_caution_order_map", client, investType, product, value, symbol, exchange, row);
}
int pu_invoke_bskt_caution_order_confirmation() {
    Record("pu_invoke_bskt_caution_order_confirmation");
    return AskCaution();
}
int pu_get_cautionary_bskt_confirm_state(InString symbol, InString exchange, int row) {
    Record("pu_get_cautionary_bskt_confirm_state", symbol, exchange, row);
    if (const auto action = std::exchange(Host().duringRowState, nullptr)) action();
    const auto& states = Host().cautionOfRow;
    return states.contains(row) ? states.at(row) : 2;
}
// Each answer is given once, the last for ever.
int pu_get_client_search_time() {
    Record("pu_get_client_search_time");
    std::deque<int>& answers = Host().searchTimes;
    const int answer = answers.front();
    if (answers.size() > 1) answers.pop_front();
    return answer;
}
int pu_resend_nontradingDate_Request() {
    return Record("pu_resend_nontradingDate_Request");
}

// Present, as every host has them, and asked for by nothing that is tested here.
int pu_InvokeDialog(int, HostWindow) {
    return 1;
}
int pu_clear_FocusFromDropDown(HostWindow, HostWindow) {
    return 1;
}
int pu_send_mrv_master_request(InString, int) {
    return 1;
}

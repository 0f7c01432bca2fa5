#include "tests/plugin/HostDouble.h"

#include "sdk/CStringArray.h"

#include <cctype>

namespace planfold::test {

namespace {

HostDouble* g_host = nullptr; // plain functions have no other way to their test

std::string Text(InString text) {
    return std::string(text->View());
}

int FillScripCombos(HostWindow, int, int, int, int, int, int, int flag) {
    g_host->scripFills.push_back(flag);
    return 1;
}
int TradingSymbolAndToken(HostWindow, int, int, int, int, int, int, OutString symbol, OutString pair) {
    *symbol = g_host->tradingSymbol;
    *pair = g_host->exchangeAndToken;
    return 1;
}
int ScripField(InString key, int, int, OutString, OutString, OutString, OutString, OutString symbol,
               OutString) {
    g_host->scripKey = Text(key);
    *symbol = g_host->tradingSymbol;
    return 1;
}
ScripDetails* Details(InString exchange, InString symbol, ScripDetails* out) {
    g_host->detailsAskedFor = {Text(exchange), Text(symbol)};
    const auto found = g_host->tokens.find(Text(exchange) + "/" + Text(symbol));
    if (found == g_host->tokens.end()) return nullptr;
    *out = {2, 0, 100.0, 5, {}, {}};
    found->second.copy(out->token, sizeof out->token - 1);
    return out;
}
RxControl* GetControl(int, CKeloRxNotifierBase*) {
    ++g_host->controlsTaken;
    return g_host->control;
}
void ReturnControl(RxControl*) {
    ++g_host->controlsReturned;
}
int AddToLog(ByValueString text) {
    g_host->log.emplace_back(TakenString(text).View());
    return 1;
}
int PeerData(OutString a, OutString b, OutString other) {
    *a = g_host->peerIdA;
    *b = g_host->peerIdB;
    *other = "other";
    return 1;
}
int Uuid(OutString identifier) {
    *identifier = g_host->uuid;
    return !g_host->uuid.empty();
}
int ActiveClient(OutString client) {
    *client = g_host->activeClient;
    return 1;
}
int ReadSetting(InString section, InString key, OutString value, int) {
    const auto kept = g_host->settings.find(Text(section) + "/" + Text(key));
    if (kept == g_host->settings.end()) return 0;
    *value = kept->second;
    return 1;
}
int WriteSetting(InString section, InString key, InString value, int) {
    g_host->settings[Text(section) + "/" + Text(key)] = Text(value);
    return 1;
}
int ValidAccount(InString account) {
    return g_host->validAccounts.contains(Text(account));
}
// Blanks match everything; "X(" matches X alone, and whatever begins with it.
const ClientResult* SearchClients(int mode, int* count, InString text, int) {
    const std::string asked = Text(text);
    g_host->searched = std::to_string(mode) + ":" + asked;
    g_host->found.clear();
    const bool exact = asked.ends_with('(');
    const std::string wanted = exact ? asked.substr(0, asked.size() - 1) : asked;
    for (const auto& [id, name] : g_host->clients) {
        std::string upperName = name;
        for (char& c : upperName)
            c = static_cast<char>(std::toupper(c));
        const bool matches = exact ? id == wanted || id.starts_with(asked)
                                   : wanted.find_first_not_of(' ') == wanted.npos || id.find(wanted) != id.npos
                                         || upperName.find(wanted) != upperName.npos;
        if (matches) g_host->found.push_back({id.c_str(), name.c_str()});
    }
    *count = static_cast<int>(g_host->found.size());
    return g_host->found.data();
}
// The answer is the low byte only.
int ClientOverview(int) {
    return 0x100 | g_host->clientOverview;
}
int MappedAccounts(CStringArray* accounts) {
    for (const std::string& account : g_host->accounts)
        accounts->Append(account, g_host->strings);
    return 1;
}
int Caution(InString client, InString type, InString product, InString value, InString symbol,
            InString exchange) {
    g_host->cautionAsked = {Text(client), Text(type), Text(product), Text(value), Text(symbol), Text(exchange)};
    g_host->duringCaution();
    return g_host->cautionAnswer;
}
int ActionRight(InString right) {
    return g_host->rights.contains(Text(right));
}
VeskApp* App() {
    return &g_host->app;
}

const std::map<std::string, AnyFunction>& Exports() {
#define EXPORT(name, function)                                                                                 \
    { #name, reinterpret_cast < AnyFunction>(static_cast <sdk::fn::name*>(function)) }
    static const std::map<std::string, AnyFunction> exports{
        EXPORT(pu_fill_scrip_combos, FillScripCombos),
        EXPORT(pu_get_trading_symbol_n_token, TradingSymbolAndToken),
        EXPORT(pu_get_intersted_scrip_field, ScripField),
        EXPORT(pu_get_scrip_details_from_TradSymbol, Details),
        EXPORT(GetKeloRxControl, GetControl),
        EXPORT(DestoryKeloRxCOntrol, ReturnControl),
        EXPORT(pu_add_to_tabbed_log, AddToLog),
        EXPORT(pu_get_peer_data, PeerData),
        EXPORT(pu_get_uuid, Uuid),
        EXPORT(pu_get_ActiveClient, ActiveClient),
        EXPORT(pu_read_settings_from_json, ReadSetting),
        EXPORT(pu_write_settings_to_json, WriteSetting),
        EXPORT(pu_is_valid_account, ValidAccount),
        EXPORT(pu_get_entered_text_results, SearchClients),
        EXPORT(pu_get_client_overview_status, ClientOverview),
        EXPORT(pu_get_all_mappedAccount_ids, MappedAccounts),
        EXPORT(pu_invoke_caution_order_confirmation, Caution),
        EXPORT(pu_is_actionright_enabled, ActionRight),
        EXPORT(pu_get_exe_app, App),
    };
#undef EXPORT
    return exports;
}

} // namespace

HostDouble::HostDouble() {
    g_host = this;
}
HostDouble::~HostDouble() {
    g_host = nullptr;
}

HostLookup HostDouble::Lookup() {
    return [this](const char* name) -> AnyFunction {
        lookedUp.emplace_back(name);
        const auto entry = Exports().find(name);
        return missing.contains(name) || entry == Exports().end() ? nullptr : entry->second;
    };
}

} // namespace planfold::test

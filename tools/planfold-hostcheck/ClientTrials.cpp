#include "tools/planfold-hostcheck/Bench.h"

#include <algorithm>

namespace hostcheck {
namespace {

Verdict TryClientCombo(sdk::fn::pu_load_client_id_combo* call, Bench& bench) {
    call(bench.workplace.Form(), id::client);
    return FilledWithTexts(bench, id::client);
}

// All clients, then the first of them by its code.
Verdict TrySearch(sdk::fn::pu_get_entered_text_results* call, Bench& bench) {
    constexpr int anywhere = 1, byCode = 2;
    const struct {
        int mode;
        std::string text;
    } searches[] = {{anywhere, " "}, {byCode, {}}};
    for (const auto& [mode, all] : searches) {
        const CString text = bench.Text(all.empty() ? bench.client : all);
        int count = -1;
        const ClientResult* results = call(mode, &count, &text, 1);
        if (count < 0 || (count > 0 && !results)) return Wrong("gives a count without results");
        const std::span<const ClientResult> found(results, static_cast<std::size_t>(count));
        if (std::ranges::any_of(found,
                                [](const ClientResult& one) { return !one.clientId || !one.clientName; }))
            return Wrong("gives a client without a code or a name: null instead of an empty text");
        if (found.empty()) return Wrong("finds no client for " + Quoted(text.View()));
        if (bench.client.empty())
            bench.client = found.front().clientId;
        else if (std::ranges::find(found, bench.client,
                                   [](const ClientResult& one) { return std::string_view(one.clientId); })
                 == found.end())
            return Wrong("does not find " + Quoted(bench.client) + " by its code");
    }
    return {};
}

Verdict TryAccount(sdk::fn::pu_is_valid_account* call, Bench& bench) {
    const CString known = bench.Text(bench.client), unknown = bench.Text(kNobody);
    if (call(&unknown)) return Wrong("takes " + Quoted(kNobody) + " for an account");
    if (bench.client.empty()) return Untried("needs a client of pu_get_entered_text_results");
    return call(&known) ? Verdict()
                        : Wrong("does not know " + Quoted(bench.client) + ", which the search found");
}

Verdict TryClientName(sdk::fn::pu_get_client_name* call, Bench& bench) {
    const CString known = bench.Text(bench.client), unknown = bench.Text(kNobody);
    CString name = bench.Text(), none = bench.Text();
    if (call(&none, &unknown)) return Wrong("has a name for " + Quoted(kNobody));
    if (bench.client.empty()) return Untried("needs a client of pu_get_entered_text_results");
    if (!call(&name, &known))
        return Wrong("does not know " + Quoted(bench.client) + ", which the search found");
    return Whole({&name, &none}, bench.strings);
}

Verdict TryActiveClient(sdk::fn::pu_get_ActiveClient* call, Bench& bench) {
    CString client = bench.Text();
    call(&client);
    return Whole({&client}, bench.strings);
}

Verdict TryAccounts(sdk::fn::pu_get_all_mappedAccount_ids* call, Bench&) {
    CStringArray accounts;
    call(&accounts);
    const bool hasEmpty = std::ranges::any_of(accounts.Elements(), &CString::IsEmpty);
    return hasEmpty ? Wrong("gives an account without a code") : Verdict();
}

Verdict TrySearchTime(sdk::fn::pu_get_client_search_time* call, Bench&) {
    const int milliseconds = call();
    return milliseconds >= 0 ? Verdict() : Wrong("gives " + std::to_string(milliseconds) + " ms");
}

Verdict CallOverview(sdk::fn::pu_get_client_overview_status* call, Bench&) {
    call(0);
    return {};
}

} // namespace

std::span<const Trial> ClientTrials() {
    using namespace sdk::fn;
    static constexpr Trial trials[] = {
        {"pu_load_client_id_combo", Try<pu_load_client_id_combo, TryClientCombo>},
        {"pu_get_entered_text_results", Try<pu_get_entered_text_results, TrySearch>},
        {"pu_is_valid_account", Try<pu_is_valid_account, TryAccount>},
        {"pu_get_client_name", Try<pu_get_client_name, TryClientName>},
        {"pu_get_ActiveClient", Try<pu_get_ActiveClient, TryActiveClient>},
        {"pu_get_all_mappedAccount_ids", Try<pu_get_all_mappedAccount_ids, TryAccounts>},
        {"pu_get_client_overview_status", Try<pu_get_client_overview_status, CallOverview>},
        {"pu_get_client_search_time", Try<pu_get_client_search_time, TrySearchTime>},
    };
    return trials;
}

} // namespace hostcheck

#include "tools/planfold-hostcheck/Bench.h"

#include <algorithm>

namespace hostcheck {

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

Verdict Same(std::string_view what, std::string_view told, std::string_view must) {
    if (told == must) return {};
    return Wrong("tells " + Quoted(told) + " as the " + std::string(what) + ", not " + Quoted(must));
}

Verdict Whole(std::initializer_list<const CString*> texts, StringManager& maker) {
    for (const CString* text : texts) {
        if (&text->Manager() != &maker) return Wrong("puts another manager's text in place of the plug-in's");
        if (text->View().find('\0') != std::string_view::npos || *(text->c_str() + text->Length()))
            return Wrong("leaves a text whose length is not that of its letters");
    }
    return {};
}

Verdict First(std::initializer_list<Verdict> verdicts) {
    const auto bad = std::ranges::find_if(verdicts, [](const Verdict& one) { return !one.IsGood(); });
    return bad == verdicts.end() ? Verdict() : *bad;
}

Verdict FilledWithTexts(Bench& bench, int combo) {
    const auto items = bench.workplace.Items(combo);
    if (items.empty()) return Wrong("adds nothing to the combo");
    return std::ranges::count(items, std::string()) == 0 ? Verdict()
                                                         : Wrong("adds an empty entry to the combo");
}

namespace {

Verdict AsksTheUser(AnyFunction, Bench&) {
    return Untried("asks the user");
}
Verdict GivesAKeyAway(AnyFunction, Bench&) {
    return Untried("gives a key away");
}
Verdict IsNeverCalled(AnyFunction, Bench&) {
    return Untried("is looked for, and never called");
}

constexpr Trial kQuestions[] = {
    {"pu_free_allocated_memory", Call<sdk::fn::pu_free_allocated_memory>},
    {"pu_invoke_caution_order_confirmation", AsksTheUser},
    {"pu_build_bskt_caution_order_map", AsksTheUser},
    {"pu_invoke_bskt_caution_order_confirmation", AsksTheUser},
    {"pu_get_cautionary_bskt_confirm_state", AsksTheUser},
    {"register_hotkey", GivesAKeyAway},
    {"pu_InvokeDialog", IsNeverCalled},
    {"pu_send_mrv_master_request", IsNeverCalled},
};

Verdict Run(const Trial& trial, Bench& bench) {
    const AnyFunction found = bench.lookup(std::string(trial.name).c_str());
    if (!found) return {State::missing, {}};
    bench.workplace.Begin(trial.name);
    const int before = bench.strings.LiveBuffers();
    Verdict verdict = trial.run(found, bench);
    if (verdict.IsGood() && bench.strings.LiveBuffers() > before)
        return Wrong("keeps a text that is the plug-in's");
    return verdict;
}

} // namespace

Findings TryExports(const HostLookup& lookup, Workplace& workplace, HeapStringManager& strings) {
    Bench bench{lookup, workplace, strings, {}, {}};
    Findings findings{false, {}};
    for (const std::span<const Trial> trials :
         {SessionTrials(), ScripTrials(), ClientTrials(), std::span<const Trial>(kQuestions)})
        for (const Trial& trial : trials) {
            Verdict verdict = Run(trial, bench);
            const sdk::HostExportUse& use =
                *std::ranges::find(sdk::kHostExportUses, trial.name, &sdk::HostExportUse::name);
            findings.exports.push_back(
                {use.name, verdict.state, use.need, use.without, std::move(verdict.detail)});
        }
    return findings;
}

} // namespace hostcheck

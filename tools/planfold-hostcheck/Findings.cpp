#include "tools/planfold-hostcheck/Findings.h"

#include <nlohmann/json.hpp>

namespace hostcheck {
namespace {

constexpr sdk::HostExportUse kEntryPoints[] = {
    {"GetVeskPluginInfo", sdk::Need::always, "the terminal does not take the file for a plug-in"},
    {"InitVeskPlugin", sdk::Need::always, "the terminal does not take the file for a plug-in"},
    {"GetOptionalVeskPluginInfo", sdk::Need::orders, "the terminal's administrators cannot grant its rights"},
    {"ExitVeskPlugin", sdk::Need::orders, "the end of the terminal meets open windows and controls"},
    {"AlertOn_ClientActivation", sdk::Need::comfort, "the plug-in does not follow the active client"},
    {"ApplyFontVarPreference", sdk::Need::comfort, "the plug-in does not follow the terminal's font"},
    {"ProcessVeskPluginMsg", sdk::Need::comfort,
     "a host that offers window messages finds nobody to take them"},
    {"GetBCGCBProVersion", sdk::Need::comfort, "a host that asks for the version of the controls gets none"},
    {"vesku_get_formatted_month_in_number", sdk::Need::comfort, "a host cannot ask for the number of a month"},
};

constexpr std::string_view NeedWord(sdk::Need need) {
    constexpr std::string_view words[] = {"always", "orders", "comfort"};
    return words[static_cast<int>(need)];
}

constexpr std::string_view StateWord(State state) {
    constexpr std::string_view words[] = {"ok", "untried", "missing", "wrong"};
    return words[static_cast<int>(state)];
}

// A name without what a compiler adds for its calling convention or for C++, in small letters.
std::string Undecorated(std::string_view name) {
    name.remove_prefix(std::min(name.find_first_not_of("?_@"), name.size()));
    std::string bare(name.substr(0, name.find('@')));
    for (char& letter : bare)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return bare;
}

// The least number of letters to add, drop or change.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// The export that was probably meant: decorated, in other letters or misspelled.
const Export* Meant(std::string_view name, std::span<const Export> exports,
                    std::span<const sdk::HostExportUse> wanted) {
    constexpr std::size_t mostMistakes = 2;
    const std::string bare = Undecorated(name);
    for (const Export& candidate : exports)
        if (std::ranges::find(wanted, std::string_view(candidate.name), &sdk::HostExportUse::name)
                == wanted.end()
            && Distance(Undecorated(candidate.name), bare) <= mostMistakes)
            return &candidate;
    return nullptr;
}

Finding Look(const sdk::HostExportUse& use, std::span<const Export> exports,
             std::span<const sdk::HostExportUse> wanted) {
    const auto found = std::ranges::find(exports, use.name, &Export::name);
    if (found == exports.end()) {
        const Export* meant = Meant(use.name, exports, wanted);
        if (!meant) return {use.name, State::missing, use.need, use.without, {}};
        return {use.name, State::wrong, use.need, use.without, "is exported as " + meant->name};
    }
    if (found->isFunction) return {use.name, State::present, use.need, use.without, {}};
    return {use.name, State::wrong, use.need, use.without, "is not a function"};
}

} // namespace

bool Findings::Lacks(sdk::Need need) const {
    return std::ranges::any_of(
        exports, [&](const Finding& one) { return one.state >= State::missing && one.need == need; });
}

Findings Examine(std::span<const Export> exports, std::string_view file) {
    const bool isPlugin =
        file.ends_with(".zup") || std::ranges::any_of(exports, [](const Export& one) {
            return std::ranges::find(kEntryPoints, std::string_view(one.name), &sdk::HostExportUse::name)
                   != std::end(kEntryPoints);
        });
    const std::span<const sdk::HostExportUse> wanted =
        isPlugin ? std::span<const sdk::HostExportUse>(kEntryPoints) : sdk::kHostExportUses;
    Findings findings{isPlugin, {}};
    for (const sdk::HostExportUse& use : wanted)
        findings.exports.push_back(Look(use, exports, wanted));
    return findings;
}

std::string Summary(const Findings& findings) {
    const auto count = [&](State state) {
        return std::to_string(std::ranges::count(findings.exports, state, &Finding::state));
    };
    std::string text = count(State::present) + " of " + std::to_string(findings.exports.size())
                       + " exports are as they must be";
    if (const std::string untried = count(State::untried); untried != "0")
        text += ", " + untried + " were not tried";
    return text;
}

std::string AsText(const Findings& findings, std::string_view file) {
    std::string text;
    for (const Finding& one : findings.exports) {
        if (one.state == State::present) continue;
        text.append(file).append(": ").append(one.name).append(" ");
        if (one.state == State::untried) {
            text.append("was not tried: ").append(one.detail).append("\n");
            continue;
        }
        text.append(one.detail.empty() ? "is missing" : one.detail);
        text.append(" (").append(NeedWord(one.need)).append("): ").append(one.without).append("\n");
    }
    return text.append(file)
        .append(findings.isPlugin ? ": a plug-in, " : ": a host, ")
        .append(Summary(findings))
        .append("\n");
}

std::string AsJson(const Findings& findings, std::string_view file) {
    nlohmann::ordered_json exports = nlohmann::ordered_json::array();
    for (const Finding& one : findings.exports) {
        nlohmann::ordered_json row{
            {"name", one.name}, {"state", StateWord(one.state)}, {"need", NeedWord(one.need)}};
        if (one.state >= State::missing) row["without"] = one.without;
        if (!one.detail.empty()) row["detail"] = one.detail;
        exports.push_back(std::move(row));
    }
    const nlohmann::ordered_json whole{
        {"file", file}, {"kind", findings.isPlugin ? "plug-in" : "host"}, {"exports", std::move(exports)}};
    return whole.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace hostcheck

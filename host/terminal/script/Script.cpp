#include "host/terminal/script/Script.h"

#include "base/Text.h"
#include "host/terminal/core/Keys.h"

#include <algorithm>
#include <array>
#include <climits>

namespace vesk {
namespace {

constexpr VerbRule kRules[] = {
#define VESK_STAGE(result, function, spelling, words) {spelling, words, RunnerVerb::none},
#define VESK_RUNNER(name, spelling, words) {spelling, words, RunnerVerb::name},
    VESK_SCRIPT_VERBS(VESK_STAGE, VESK_RUNNER)
#undef VESK_STAGE
#undef VESK_RUNNER
};

constexpr BoxAnswer kAnswers[] = {
    {"OK", 1},
    {"Cancel", 2},
    {"Yes", 6},
    {"No", 7},
};

constexpr std::string_view kDockPlaces[] = {"left", "right", "top", "bottom", "float", "tab"};

struct Word {
    std::string text;
    bool quoted;
};

// The words of a line, or what is wrong with it.
std::optional<std::string> SplitWords(std::string_view line, std::vector<Word>& words) {
    for (std::size_t at = 0;;) {
        at = line.find_first_not_of(" \t", at);
        if (at == std::string_view::npos || line[at] == '#') return std::nullopt;
        if (line[at] != '"') {
            const std::size_t end = std::min(line.find_first_of(" \t", at), line.size());
            words.push_back({std::string(line.substr(at, end - at)), false});
            at = end;
            continue;
        }
        std::string text;
        for (++at; at < line.size() && line[at] != '"'; ++at) {
            if (line[at] != '\\') {
                text += line[at];
                continue;
            }
            if (++at == line.size()) break;
            if (line[at] == 'n')
                text += '\n';
            else if (line[at] == '"' || line[at] == '\\')
                text += line[at];
            else
                return std::string("unknown escape \\") + line[at];
        }
        if (at >= line.size()) return "a quote is not closed";
        words.push_back({std::move(text), true});
        ++at;
    }
}

// The rule, and how many words its name takes: "expect text" is two.
const VerbRule* FindRule(std::span<const Word> words, std::size_t& nameWords) {
    for (nameWords = std::min<std::size_t>(2, words.size()); nameWords; --nameWords) {
        std::string name = words[0].text;
        if (nameWords == 2) name += ' ' + words[1].text;
        const auto* rule = std::ranges::find(kRules, name, &VerbRule::name);
        if (rule != std::end(kRules)) return rule;
    }
    return nullptr;
}

std::optional<std::string> CheckWord(char kind, const std::string& word) {
    const auto number = base::ReadNumber<long long>(word);
    switch (kind) {
    case 'c':
    case 'n':
        if (!number || *number < INT_MIN || *number > INT_MAX) return '"' + word + "\" is not a whole number";
        break;
    case 'k':
        if (!ParseKeyStroke(word)) return '"' + word + "\" is not a key";
        break;
    case 'b':
        if (word != "on" && word != "off") return '"' + word + "\" is neither on nor off";
        break;
    case 'd':
        if (std::ranges::count(kDockPlaces, word) == 0) return '"' + word + "\" is not a pane's place";
        break;
    case 'a':
        if (!BoxButton(word)) return '"' + word + "\" is not an answer";
        break;
    default:
        break;
    }
    return std::nullopt;
}

std::optional<std::string> CheckWords(const VerbRule& rule, const std::vector<std::string>& words) {
    const bool open = rule.words.ends_with('*');
    const bool loose = open || rule.words.ends_with('?'); // the word before may be missing
    const std::string_view kinds = rule.words.substr(0, rule.words.size() - (loose ? 1 : 0));
    const std::size_t least = kinds.size() - (loose ? 1 : 0);
    if (words.size() < least || (!open && words.size() > kinds.size()))
        return '"' + std::string(rule.name) + "\" takes " + (loose ? "at least " : "") + std::to_string(least)
               + " words, " + std::to_string(words.size()) + " found";
    for (std::size_t i = 0; i < words.size(); ++i)
        if (auto what = CheckWord(kinds[std::min(i, kinds.size() - 1)], words[i])) return what;
    return std::nullopt;
}

std::optional<std::string> ParseLine(std::string_view line, std::size_t number, Script& script) {
    std::vector<Word> words;
    if (auto what = SplitWords(line, words)) return what;
    if (words.empty()) return std::nullopt;
    std::size_t nameWords = 0;
    const VerbRule* rule = FindRule(words, nameWords);
    if (!rule) return "unknown command \"" + words[0].text + '"';
    ScriptCommand command{static_cast<std::size_t>(rule - kRules), {}, number};
    for (std::size_t i = nameWords; i < words.size(); ++i)
        command.words.push_back(std::move(words[i].text));
    if (auto what = CheckWords(*rule, command.words)) return what;
    script.commands.push_back(std::move(command));
    return std::nullopt;
}

std::string QuotedWord(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '\n')
            result += "\\n";
        else if (c == '"' || c == '\\')
            (result += '\\') += c;
        else
            result += c;
    }
    return result + '"';
}

} // namespace

std::span<const VerbRule> VerbRules() {
    return kRules;
}

std::optional<int> BoxButton(std::string_view answer) {
    const auto* known = std::ranges::find(kAnswers, answer, &BoxAnswer::name);
    if (known == std::end(kAnswers)) return std::nullopt;
    return known->button;
}

int ScriptCommand::Number(std::size_t word) const {
    return static_cast<int>(base::ReadNumber<long long>(words[word]).value_or(0));
}

std::string ScriptCommand::Text() const {
    const VerbRule& rule = Rule();
    std::string text(rule.name);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char kind = rule.words[std::min(i, rule.words.size() - 1)];
        text += ' ' + (kind == 't' || kind == '*' ? QuotedWord(words[i]) : words[i]);
    }
    return text;
}

Loaded<Script> Script::Load(const std::string& path) {
    Loaded<std::string> text = ReadTextFile(path);
    if (!text) return text.Fault();
    return Parse(text.Value(), path);
}

Loaded<Script> Script::Parse(std::string_view text, std::string_view path) {
    Script script{std::string(FileNameOf(path)), {}};
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (auto what = ParseLine(line, number, script)) return FileFault{script.fileName, number, *what};
    }
    return script;
}

} // namespace vesk

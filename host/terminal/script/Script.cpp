#include "host/terminal/script/Script.h"

#include "host/market/CsvLines.h"
#include "host/terminal/script/KeyText.h"

#include <algorithm>
#include <array>
#include <climits>

namespace vesk {
namespace {

constexpr VerbRule kRules[] = {
    {Verb::menu, "menu", "ttt*", "pick the entry at this path of the menu bar"},
    {Verb::window, "window", "t", "wait for the window with this caption and use its controls"},
    {Verb::mainWindow, "main", "", "use the controls of the main frame"},
    {Verb::select, "select", "nt", "select this text in the combo"},
    {Verb::edit, "edit", "nt", "put this text into the edit"},
    {Verb::date, "date", "nn", "set the date picker to so many days from today"},
    {Verb::type, "type", "t", "type this text on the keyboard"},
    {Verb::key, "key", "k", "press this key on the keyboard"},
    {Verb::focus, "focus", "n", "give the control the focus"},
    {Verb::press, "press", "n", "press the button"},
    {Verb::command, "command", "n", "send the current window this command"},
    {Verb::row, "row", "nn", "select only this row of the list"},
    {Verb::selectRows, "select-rows", "nnn",
     "select the list's rows from the first to the last, and only these"},
    {Verb::header, "header", "nn", "click the heading of this column of the list"},
    {Verb::tab, "tab", "nt", "go to the page with this text"},
    {Verb::context, "context", "nt", "pick this entry of the list's context menu"},
    {Verb::file, "file", "t", "give this path to the open file dialog; a relative one is beside the program"},
    {Verb::box, "box", "ta", "wait for the message box with exactly this text and answer it"},
    {Verb::boxStarting, "box starting", "ta", "the same for a text that only begins so"},
    {Verb::answer, "answer", "a", "answer the message box that \"expect box\" found"},
    {Verb::expectText, "expect text", "nt", "the control shows this text"},
    {Verb::expectWindow, "expect window", "t", "a window with this caption is shown"},
    {Verb::expectNoWindow, "expect no-window", "t", "no window with this caption is shown"},
    {Verb::expectMenu, "expect menu", "tt*", "the menu holds exactly these entries"},
    {Verb::expectLog, "expect log", "t", "a log line contains this"},
    {Verb::expectNoLog, "expect no-log", "t", "no log line contains this"},
    {Verb::expectCombo, "expect combo", "nt*", "the combo holds exactly these entries"},
    {Verb::expectEnabled, "expect enabled", "nb", "the control is enabled"},
    {Verb::expectVisible, "expect visible", "nb", "the control is shown"},
    {Verb::expectFocus, "expect focus", "n", "the control has the focus"},
    {Verb::expectRows, "expect rows", "nn", "the list has this many rows"},
    {Verb::expectCell, "expect cell", "nnnt",
     "list, row, column: the cell shows this text, or with * at its end one that begins so"},
    {Verb::expectHeadings, "expect headings", "nt*", "the list has exactly these columns"},
    {Verb::expectFocusRow, "expect focus-row", "nn", "this row of the list has the focus"},
    {Verb::expectSelectedRows, "expect selected-rows", "nn", "so many rows of the list are selected"},
    {Verb::expectContext, "expect context", "nt*",
     "the list's context menu holds exactly these entries: - a separator, ~ before a greyed one"},
    {Verb::expectTabs, "expect tabs", "nt*", "the tabs are exactly these"},
    {Verb::expectSelected, "expect selected", "nt", "the tab with this text is selected"},
    {Verb::expectStatus, "expect status", "nnt", "status bar, part: it shows this text"},
    {Verb::expectJournal, "expect journal", "t", "the server's journal file contains this"},
    {Verb::expectExecuted, "expect executed", "",
     "every instalment that is due is executed and all is delivered"},
    {Verb::expectBox, "expect box", "t", "a message box with exactly this text is open; it stays open"},
    {Verb::expectBoxStarting, "expect box-starting", "t", "the same for a text that only begins so"},
    {Verb::screenshot, "screenshot", "t", "save the screen to this PNG file"},
    {Verb::client, "client", "t", "activate this client"},
    {Verb::font, "font", "nn", "points added, size in points (0: the windows' own)"},
    {Verb::right, "right", "tb", "grant or revoke this right"},
    {Verb::mode, "mode", "n", "log in with this mode"},
    {Verb::clock, "clock", "t",
     "move the server's clock forward by so many days, to a date such as 2027-03-05, or with next to the next "
     "instalment"},
    {Verb::fill, "fill", "n", "enter so many made-up registrations on the server"},
    {Verb::other, "other", "n", "place so many orders from another session"},
    {Verb::execute, "execute", "nt?",
     "place exchange orders for so many past instalments of the registration with this number, or the latest"},
    {Verb::fault, "fault", "ttt?",
     "play this on the request, * for any: delay (milliseconds), error (code), silent, garbage, disconnect "
     "(times), none"},
    {Verb::dpi, "dpi", "n", "tell all windows what a move to a screen of this resolution tells them"},
    {Verb::locale, "locale", "t",
     "set the process's locale, as another module of it may: German writes 1234,50"},
    {Verb::measure, "measure", "t?", "write what the program holds of the system into the session's log"},
    {Verb::dock, "dock", "td",
     "move the pane: left, right, top, bottom, float, tab (with another docked pane)"},
    {Verb::hidePane, "hide-pane", "t", "close the pane with this caption"},
    {Verb::showPane, "show-pane", "t", "show the pane with this caption"},
    {Verb::expectDocked, "expect docked", "td", "the pane stands so; it may be hidden"},
    {Verb::timeout, "timeout", "n", "seconds that each following command may take"},
    {Verb::close, "close", "", "close the current window"},
    {Verb::exit, "exit", "", "end the session here"},
};
static_assert(std::size(kRules) == static_cast<std::size_t>(Verb::count));

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
    const auto number = ParseWholeNumber(word);
    switch (kind) {
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
    ScriptCommand command{rule->verb, {}, number};
    for (std::size_t i = nameWords; i < words.size(); ++i)
        command.words.push_back(std::move(words[i].text));
    if (auto what = CheckWords(*rule, command.words)) return what;
    script.commands.push_back(std::move(command));
    return std::nullopt;
}

std::string Quoted(std::string_view text) {
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
    return static_cast<int>(ParseWholeNumber(words[word]).value_or(0));
}

std::string ScriptCommand::Text() const {
    const VerbRule& rule = kRules[static_cast<std::size_t>(verb)];
    std::string text(rule.name);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char kind = rule.words[std::min(i, rule.words.size() - 1)];
        text += ' ' + (kind == 't' || kind == '*' ? Quoted(words[i]) : words[i]);
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

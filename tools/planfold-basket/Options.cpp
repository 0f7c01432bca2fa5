#include "tools/planfold-basket/Options.h"

#include "host/market/CsvLines.h"
#include "plugin/messaging/Dates.h"
#include "plugin/messaging/Session.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace basket {
namespace {

using vesk::ParseWholeNumber;

constexpr long long kMostLines = 10'000'000;
constexpr long long kHighestMinimum = 1'000'000;

std::vector<std::string_view> Parts(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

// "CNC,MIS"
bool ReadProducts(Options& options, std::string_view text) {
    options.rules.products.clear();
    for (const std::string_view product : Parts(text, ','))
        options.rules.products.emplace_back(product);
    return std::ranges::find(options.rules.products, std::string()) == options.rules.products.end();
}

// "months", or "daily:5,monthly:6"
bool ReadMode(Options& options, std::string_view text) {
    planfold::BasketRules& rules = options.rules;
    rules.frequencies.clear();
    rules.serverPeriods = text != "months";
    if (!rules.serverPeriods) return true;
    for (const std::string_view entry : Parts(text, ',')) {
        const std::vector<std::string_view> parts = Parts(entry, ':');
        if (parts.size() != 2) return false;
        const planfold::FrequencyRow* row = planfold::FindFrequency(parts[0]);
        const auto minimum = ParseWholeNumber(parts[1]);
        if (!row || !minimum || *minimum < 0 || *minimum > kHighestMinimum) return false;
        rules.frequencies.emplace_back(row->word);
        rules.minimums[static_cast<std::size_t>(row - planfold::kFrequencies)] = static_cast<double>(*minimum);
    }
    return true;
}

// "2027-03-05"
bool ReadToday(Options& options, std::string_view text) {
    const std::vector<std::string_view> parts = Parts(text, '-');
    if (parts.size() != 3) return false;
    int numbers[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto number = ParseWholeNumber(parts[i]);
        if (!number || *number < 1 || *number > 9998) return false;
        numbers[i] = static_cast<int>(*number);
    }
    const std::chrono::year_month_day date{std::chrono::year(numbers[0]),
                                           std::chrono::month(static_cast<unsigned>(numbers[1])),
                                           std::chrono::day(static_cast<unsigned>(numbers[2]))};
    if (!date.ok() || numbers[0] < 1971) return false;
    // In the middle of the day: an order that starts on it is too late, whichever clock is in force.
    options.rules.now = planfold::ToSeconds({numbers[0], numbers[1], numbers[2], 12, 0, 0});
    return options.rules.now >= 0;
}

bool ReadLineCount(Options& options, std::string_view text) {
    const auto lines = ParseWholeNumber(text);
    if (!lines || *lines < 1 || *lines > kMostLines) return false;
    options.lines = *lines;
    return true;
}

template <std::string Options::*member>
bool ReadPath(Options& options, std::string_view text) {
    options.*member = text;
    return !text.empty();
}

enum For : unsigned { forCheck = 1, forTemplate = 2, forBoth = 3 };

struct Switch {
    std::string_view name;
    For commands;
    bool (*read)(Options& options, std::string_view text); // false: not understood. Null: takes no text
};
constexpr Switch kSwitches[] = {
    {"--scrips", forBoth, ReadPath<&Options::scrips>},
    {"--products", forBoth, ReadProducts},
    {"--mode", forBoth, ReadMode},
    {"--today", forBoth, ReadToday},
    {"--rejects", forCheck, ReadPath<&Options::rejects>},
    {"--normalised", forCheck, ReadPath<&Options::normalised>},
    {"--json", forCheck, nullptr},
    {"--out", forTemplate, ReadPath<&Options::out>},
    {"--lines", forTemplate, ReadLineCount},
};

using Complaint = std::optional<std::string>;

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

Complaint ReadSwitches(std::span<const std::string> words, For command, Options& options) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string word = words[i];
        if (word == kStandardStream || !word.starts_with('-')) {
            if (command != forCheck || !options.file.empty()) return Quoted(word) + " is one word too many";
            options.file = word;
            continue;
        }
        const Switch* found = std::ranges::find(kSwitches, word, &Switch::name);
        if (found == std::end(kSwitches) || !(found->commands & command)) return "unknown option " + word;
        if (!found->read) {
            options.json = true;
            continue;
        }
        if (++i == words.size()) return word + " needs a value";
        if (!found->read(options, words[i])) return word + " does not take " + Quoted(words[i]);
    }
    return std::nullopt;
}

Complaint Incomplete(const Options& options) {
    if (options.scrips.empty()) return "--scrips is missing";
    if (options.command != Command::check) return std::nullopt;
    if (options.file.empty()) return "the basket's file is missing";
    if (!options.rejects.empty() && options.rejects == options.normalised)
        return "--rejects and --normalised name the same file";
    return std::nullopt;
}

} // namespace

Complaint ReadOptions(std::span<const std::string> words, Options& options) {
    options.rules.products = {"CNC"};
    options.rules.now = std::time(nullptr);
    if (words.empty()) return "a command is missing";
    if (std::ranges::find(words, std::string_view("--help")) != words.end()) return std::nullopt;
    const std::string_view command = words.front();
    if (command != "check" && command != "template") return "unknown command " + Quoted(command);
    options.command = command == "check" ? Command::check : Command::writeTemplate;
    const For commands = command == "check" ? forCheck : forTemplate;
    if (Complaint complaint = ReadSwitches(words.subspan(1), commands, options)) return complaint;
    return Incomplete(options);
}

} // namespace basket

#include "tools/planfold-basket/Commands.h"

#include "base/Text.h"
#include "host/files/OptionRows.h"
#include "plugin/base/Dates.h"
#include "plugin/messaging/Session.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace basket {
namespace {

using vesk::OptionRow;
using vesk::Quoted;
using vesk::ReadText;

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
        const planfold::Frequency* row = planfold::FindFrequency(parts[0]);
        const auto minimum = base::ReadNumber<long long>(parts[1]);
        if (!row || !minimum || *minimum < 0 || *minimum > kHighestMinimum) return false;
        rules.frequencies.emplace_back(row->word);
        rules.minimums[IndexOf(*row)] = static_cast<double>(*minimum);
    }
    return true;
}

// "2027-03-05"
bool ReadToday(Options& options, std::string_view text) {
    const std::vector<std::string_view> parts = Parts(text, '-');
    if (parts.size() != 3) return false;
    int numbers[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto number = base::ReadNumber<long long>(parts[i]);
        if (!number || *number < 1 || *number > 9998) return false;
        numbers[i] = static_cast<int>(*number);
    }
    const std::chrono::year_month_day date{std::chrono::year(numbers[0]),
                                           std::chrono::month(static_cast<unsigned>(numbers[1])),
                                           std::chrono::day(static_cast<unsigned>(numbers[2]))};
    if (!date.ok() || numbers[0] < 1971) return false;
    // The clock stands in the middle of the day: an order that starts on it is too late, whichever clock is in
    // force.
    options.rules.now = planfold::ToSeconds({numbers[0], numbers[1], numbers[2], 12, 0, 0});
    return options.rules.now >= 0;
}

bool ReadLineCount(Options& options, std::string_view text) {
    const auto lines = base::ReadNumber<long long>(text);
    if (!lines || *lines < 1 || *lines > kMostLines) return false;
    options.lines = *lines;
    return true;
}

bool ReadJson(Options& options, std::string_view) {
    return options.json = true;
}

constexpr OptionRow<Options> kOfBoth[] = {
    {"--scrips", ReadText<&Options::scrips>},
    {"--products", ReadProducts},
    {"--mode", ReadMode},
    {"--today", ReadToday},
};
constexpr OptionRow<Options> kOfCheck[] = {
    {"--rejects", ReadText<&Options::rejects>},
    {"--normalised", ReadText<&Options::normalised>},
    {"--json", ReadJson, ""},
};
constexpr OptionRow<Options> kOfTemplate[] = {
    {"--out", ReadText<&Options::out>},
    {"--lines", ReadLineCount},
};

using vesk::Complaint;

Complaint ReadRows(std::span<const std::string> words, Options& options) {
    const bool checks = options.task == Task::check;
    std::vector<OptionRow<Options>> rows(std::begin(kOfBoth), std::end(kOfBoth));
    const std::span<const OptionRow<Options>> own =
        checks ? std::span<const OptionRow<Options>>(kOfCheck) : kOfTemplate;
    rows.insert(rows.end(), own.begin(), own.end());
    return vesk::ReadOptionRows<Options>(words, rows, options, [&](const std::string& word) {
        if (!checks || !options.file.empty()) return false;
        options.file = word;
        return true;
    });
}

Complaint Incomplete(const Options& options) {
    if (options.scrips.empty()) return "--scrips is missing";
    if (options.task != Task::check) return std::nullopt;
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
    options.task = command == "check" ? Task::check : Task::writeTemplate;
    if (Complaint complaint = ReadRows(words.subspan(1), options)) return complaint;
    return Incomplete(options);
}

} // namespace basket

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

// "dd/mm/yyyy", or a mapping's word.
bool ReadPattern(Options& options, std::string_view text) {
    options.pattern = planfold::PatternOfWord(text).value_or(planfold::PatternOfHeading(text));
    return options.pattern != planfold::DatePattern::undecided;
}

bool ReadUnit(Options& options, std::string_view text) {
    options.unit = planfold::UnitOfWord(text).value_or(planfold::AmountUnit::undecided);
    return options.unit != planfold::AmountUnit::undecided;
}

// "series=EQ"
bool ReadDefault(Options& options, std::string_view text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    const auto field = planfold::FieldOfWord(text.substr(0, equals));
    if (!field || !planfold::FindImportField(*field)->hasDefault || equals + 1 >= text.size()) return false;
    options.defaults[*field] = text.substr(equals + 1);
    return true;
}

constexpr OptionRow<Options> kOfAll[] = {
    {"--scrips", ReadText<&Options::scrips>},
    {"--products", ReadProducts},
    {"--mode", ReadMode},
    {"--today", ReadToday},
};
constexpr OptionRow<Options> kOfImport[] = {
    {"--map", ReadText<&Options::map>},
    {"--date", ReadPattern},
    {"--amount", ReadUnit},
    {"--default", ReadDefault},
};
// Also of an import.
constexpr OptionRow<Options> kOfCheck[] = {
    {"--rejects", ReadText<&Options::rejects>},
    {"--normalised", ReadText<&Options::normalised>},
    {"--limits", ReadText<&Options::limits>},
    {"--json", ReadJson, ""},
};
constexpr OptionRow<Options> kOfTemplate[] = {
    {"--out", ReadText<&Options::out>},
    {"--lines", ReadLineCount},
};

struct TaskWord {
    std::string_view word;
    Task task;
};
constexpr TaskWord kTasks[] = {
    {"check", Task::check}, {"import", Task::importFile}, {"template", Task::writeTemplate}};

using vesk::Complaint;

bool ReadsOrders(const Options& options) {
    return options.task == Task::check || options.task == Task::importFile;
}

Complaint ReadRows(std::span<const std::string> words, Options& options) {
    std::vector<OptionRow<Options>> rows;
    const auto add = [&](std::span<const OptionRow<Options>> own) {
        for (const OptionRow<Options>& row : own)
            rows.push_back(row);
    };
    add(kOfAll);
    add(ReadsOrders(options) ? std::span<const OptionRow<Options>>(kOfCheck) : kOfTemplate);
    if (options.task == Task::importFile) add(kOfImport);
    return vesk::ReadOptionRows<Options>(words, rows, options, [&](const std::string& word) {
        if (!ReadsOrders(options) || !options.file.empty()) return false;
        options.file = word;
        return true;
    });
}

Complaint Incomplete(const Options& options) {
    if (options.scrips.empty()) return "--scrips is missing";
    if (!ReadsOrders(options)) return std::nullopt;
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
    if (command == "--version") {
        options.task = Task::version;
        return std::nullopt;
    }
    const auto* task = std::ranges::find(kTasks, command, &TaskWord::word);
    if (task == std::end(kTasks)) return "unknown command " + Quoted(command);
    options.task = task->task;
    if (Complaint complaint = ReadRows(words.subspan(1), options)) return complaint;
    return Incomplete(options);
}

} // namespace basket

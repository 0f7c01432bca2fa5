// What planfold-basket is asked to do.
#pragma once

#include "host/market/ScripMaster.h"
#include "plugin/basket/BasketLine.h"
#include "plugin/import/Mapping.h"

#include <optional>
#include <span>
#include <string>

namespace basket {

enum class Task { help, version, check, importFile, writeTemplate };

inline constexpr std::string_view kStandardStream = "-";

struct Options {
    Task task = Task::help;
    std::string file; // the basket
    std::string scrips;
    std::string rejects, normalised; // empty: not asked for
    std::string limits;              // the settings file with the desk's; empty: not asked for
    bool json = false;
    std::string out{kStandardStream}; // of the template
    long long lines = 10;
    planfold::BasketRules rules;
    // Of an import; undecided and empty where the file's headings are to say it.
    std::string map;
    planfold::AmountUnit unit = planfold::AmountUnit::undecided;
    planfold::DatePattern pattern = planfold::DatePattern::undecided;
    std::map<planfold::BasketField, std::string> defaults;
};

// The words behind the program's name. The answer says what is wrong with them, if anything.
std::optional<std::string> ReadOptions(std::span<const std::string> words, Options& options);

// What planfold-basket does. Each command answers with the program's exit status.
inline constexpr int kAllGood = 0;
inline constexpr int kSomeRejected = 1;
inline constexpr int kFailed = 2;

int Check(const Options& options, planfold::ScripSource& scrips);
int Import(const Options& options, planfold::ScripSource& scrips);
int WriteTemplate(const Options& options, std::span<const vesk::Scrip> master, planfold::ScripSource& scrips);

// Of the words behind "changes", which has options of its own.
int Changes(std::span<const std::string> words);

// Says on standard error why the program ends.
int Fail(std::string_view why);

extern const std::string_view kHelp;

} // namespace basket

// What planfold-basket is asked to do.
#pragma once

#include "plugin/basket/BasketLine.h"

#include <optional>
#include <span>
#include <string>

namespace basket {

enum class Command { help, check, writeTemplate };

inline constexpr std::string_view kStandardStream = "-";

struct Options {
    Command command = Command::help;
    std::string file; // the basket
    std::string scrips;
    std::string rejects, normalised; // empty: not asked for
    bool json = false;
    std::string out{kStandardStream}; // of the template
    long long lines = 10;
    planfold::BasketRules rules;
};

// The words behind the program's name. The answer says what is wrong with them, if anything.
std::optional<std::string> ReadOptions(std::span<const std::string> words, Options& options);

} // namespace basket

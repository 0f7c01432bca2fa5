// What planfold-basket does. Each command answers with the program's exit status.
#pragma once

#include "host/market/ScripMaster.h"
#include "tools/planfold-basket/Options.h"

namespace basket {

inline constexpr int kAllGood = 0;
inline constexpr int kSomeRejected = 1;
inline constexpr int kFailed = 2;

int Check(const Options& options, planfold::ScripSource& scrips);
int WriteTemplate(const Options& options, std::span<const vesk::Scrip> master, planfold::ScripSource& scrips);

// Says on standard error why the program ends.
int Fail(std::string_view why);

extern const std::string_view kHelp;

} // namespace basket

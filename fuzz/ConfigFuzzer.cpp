// The configuration of the terminal and of the server, of any content: a fault that names the file, or values
// within their ranges.

#include "fuzz/Fuzz.h"
#include "host/market/TerminalConfig.h"
#include "host/server/ServerConfig.h"

using fuzz::Demand;

namespace {

void CheckTerminal(std::string_view text) {
    const auto loaded = vesk::TerminalConfig::Parse(text, "folder/file.json");
    if (!loaded) {
        Demand(loaded.Fault().file == "file.json" && !loaded.Fault().what.empty());
        return;
    }
    const vesk::TerminalConfig& config = loaded.Value();
    Demand(config.loginMode >= vesk::TerminalConfig::kLeastLoginMode
           && config.loginMode <= vesk::TerminalConfig::kMostLoginMode);
    Demand(config.clientSearchMs >= 0 && config.clientSearchMs <= 60'000);
    Demand(config.fontSize >= 0 && config.fontSize <= 72);
}

void CheckServer(std::string_view text) {
    const vesk::ConfigResult result = vesk::ParseServerConfig(text, "file.json");
    Demand(result.config.has_value() == result.error.empty());
    if (!result.config) return Demand(result.error.starts_with("file.json:"));
    bool anyWithout = false;
    for (const vesk::Frequency& frequency : result.config->frequencies) {
        Demand(!frequency.name.empty());
        // Names and minimums travel paired by position.
        Demand(!frequency.minimumPeriods || (!anyWithout && *frequency.minimumPeriods >= 0));
        anyWithout |= !frequency.minimumPeriods;
    }
    for (const auto& [request, fault] : result.config->faults) {
        Demand(&result.config->FaultFor(request) == &fault);
        Demand(fault.delayMs >= 0 && fault.delayMs <= 86'400'000);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckTerminal(fuzz::Text(data, size));
    CheckServer(fuzz::Text(data, size));
    return 0;
}

#include "tools/planfold-basket/Sources.h"

#include "base/Text.h"
#include "host/files/Files.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/basket/DeskLimits.h"
#include "tools/planfold-basket/Commands.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <system_error>

namespace basket {

vesk::Loaded<std::string> ReadText(const std::string& path) {
    if (path != kStandardStream) return vesk::ReadWholeFile(path);
    std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    if (std::cin.bad()) return vesk::FileFault{path, 0, "standard input cannot be read"};
    return text;
}

bool WriteText(const std::string& path, std::string_view text) {
    if (path == kStandardStream)
        return static_cast<bool>(
            std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush());
    constexpr std::ios::openmode asText{};
    std::error_code error;
    // A device or a pipe has nothing to lose, and must not be replaced.
    const std::filesystem::path file = vesk::PathOf(path);
    if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        return vesk::WriteInPlace(path, text, asText);
    return vesk::WriteWholeFile(path, text, asText);
}

namespace {

constexpr std::string_view kBlanks = " \t\r";

} // namespace

// Of two sections with the name the first counts, and of two equal keys as well.
vesk::Loaded<std::map<std::string, std::string>> ReadLimits(const std::string& path) {
    const auto text = path == kStandardStream ? ReadText(path) : vesk::ReadTextFile(path);
    if (!text) return text.Fault();
    std::map<std::string, std::string> limits;
    planfold::BasketLines lines(text.Value());
    bool isIn = false;
    while (const auto line = lines.Next()) {
        const std::string_view setting = base::Trimmed(line->text, kBlanks);
        if (setting.starts_with('[') && isIn) break;
        if (setting.starts_with('['))
            isIn = planfold::EqualsIgnoringCase(setting.substr(1, setting.find(']') - 1),
                                                planfold::kLimitsSection);
        const std::size_t equals = setting.find('=');
        if (!isIn || setting.starts_with(';') || equals == setting.npos) continue;
        for (int limit = 0; limit < static_cast<int>(planfold::DeskLimit::count); ++limit) {
            const char* key = KeyOf(static_cast<planfold::DeskLimit>(limit));
            if (planfold::EqualsIgnoringCase(base::Trimmed(setting.substr(0, equals), kBlanks), key))
                limits.try_emplace(key, base::Trimmed(setting.substr(equals + 1), kBlanks));
        }
    }
    return limits;
}

std::optional<ScripDetails> MasterScrips::Details(std::string_view exchange, std::string_view tradingSymbol) {
    const vesk::Scrip* scrip = m_master.ByTradingSymbol(exchange, tradingSymbol);
    if (!scrip) return std::nullopt;
    ScripDetails details{};
    details.decimals = scrip->decimals;
    details.priceMultiplier = scrip->multiplier;
    details.tickSize = scrip->tickSize;
    // The master has checked that both fit with a zero behind them.
    scrip->token.copy(details.token, sizeof details.token - 1);
    scrip->tradingSymbol.copy(details.tradingSymbol, sizeof details.tradingSymbol - 1);
    return details;
}

planfold::ScripNames MasterScrips::Names(std::string_view exchange, std::string_view series,
                                         std::string_view symbol) {
    const vesk::Scrip* scrip = m_master.BySymbol(exchange, series, symbol);
    if (!scrip) return {};
    return {scrip->tradingSymbol, scrip->token, scrip->company};
}

} // namespace basket
